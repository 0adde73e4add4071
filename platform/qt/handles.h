// platform/qt/handles.h - the widgets that the seam reaches, by the identifiers of resources/ids.h
//
// shell/qt/ makes the widgets and fills this record. Everything is null or empty outside the program's run.
#pragma once
#include <QtCore/QHash>

class QAbstractButton;
class QAction;
class QComboBox;
class QLabel;
class QWidget;

struct WindowHandles
{
    QWidget* main;
    QWidget* panel;
    QWidget* display;
    QComboBox* filterList;
    QHash<int, QAction*> menu;
    QHash<int, QAbstractButton*> panelButtons; // check boxes, too
    QHash<int, QLabel*> panelTexts;
};

extern WindowHandles windowHandles;
