// shell/qt/single_instance.cpp - a path through a socket
#include "shell/qt/single_instance.h"

#include "platform/files.h"
#include "platform/qt/handles.h"
#include "shell/given_files.h"

#include <QtCore/QStandardPaths>
#include <QtNetwork/QLocalSocket>
#include <QtWidgets/QWidget>

constexpr int answerLimitMs = 1000;

static QString socketName()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return folder + "/kestrelbox";
}

bool handOver(const char* path)
{
    QLocalSocket socket;
    socket.connectToServer(socketName());
    if (!socket.waitForConnected(answerLimitMs))
        return false;
    std::string full = *path ? fullPathOf(path) : ""; // the other program may run in another folder
    socket.write(full.c_str(), static_cast<qint64>(full.size()) + 1);
    socket.waitForBytesWritten(answerLimitMs);
    socket.disconnectFromServer();
    return true;
}

static void comeForward()
{
    QWidget* window = windowHandles.main;
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->raise();
    window->activateWindow();
}

// Whatever connects is a program of the same user, but what it writes is input like any other: it ends with the first 0
// and has a limit.
static void takePath(QLocalSocket* socket)
{
    QByteArray bytes = socket->peek(static_cast<qint64>(handOverRoom));
    qsizetype end = bytes.indexOf('\0');
    if (end < 0 && static_cast<size_t>(bytes.size()) < handOverRoom)
        return; // more will come
    socket->disconnectFromServer();
    if (end < 0)
        return;
    comeForward();
    if (end > 0)
        takeHandedOver(handOverTag, bytes.constData(), static_cast<size_t>(end) + 1);
}

SingleInstance::SingleInstance()
{
    server.setSocketOptions(QLocalServer::UserAccessOption);
    QLocalServer::removeServer(socketName()); // one that a program which ended badly has left
    server.listen(socketName());
    QObject::connect(&server, &QLocalServer::newConnection, &server, [this] { receive(); });
}

void SingleInstance::receive()
{
    while (QLocalSocket* socket = server.nextPendingConnection())
    {
        QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [socket] { takePath(socket); });
        takePath(socket);
    }
}
