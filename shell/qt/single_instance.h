// shell/qt/single_instance.h - one window for each user: a second start hands its file to the first
//
// The two meet at a socket in the user's own folder, which no other user may open.
#pragma once
#include <QtNetwork/QLocalServer>

// Hands a file, or "" for none, to the program that already runs. Returns false when none does.
bool handOver(const char* path);

// Receives what later starts hand over: the window comes forward, and a file is opened as if it had been dropped.
class SingleInstance
{
public:
    SingleInstance();

private:
    void receive();

    QLocalServer server;
};
