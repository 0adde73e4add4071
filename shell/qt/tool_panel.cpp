// shell/qt/tool_panel.cpp - the tool panel: a box for each group, its controls below each other
#include "platform/qt/handles.h"
#include "resources/controls.h"
#include "shell/panel.h"
#include "shell/qt/desktop.h"

#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

// "activated" and "clicked" come from the user only, never from what the program marks.
static QWidget* makeFilterList(int id)
{
    auto* list = new QComboBox;
    list->setAccessibleName("Group or material");
    list->view()->setAccessibleName("Groups and materials");
    list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    list->setMinimumContentsLength(14);
    QObject::connect(list, &QComboBox::activated, list, [id] { runPanelCommand(id); });
    windowHandles.filterList = list;
    return list;
}

static QAbstractButton* makeButton(const PanelControl& control, PanelControlKind kind)
{
    QAbstractButton* button = nullptr;
    if (kind == panelBox)
        button = new QCheckBox(control.text);
    else
        button = new QPushButton(control.text);
    QObject::connect(button, &QAbstractButton::clicked, button, [id = control.id] { runPanelCommand(id); });
    windowHandles.panelButtons.insert(control.id, button);
    return button;
}

static void addCount(QGridLayout* layout, int row, const PanelControl& control)
{
    auto* count = new QLabel;
    count->setAlignment(Qt::AlignRight);
    count->setAccessibleName(control.text);
    layout->addWidget(new QLabel(control.text), row, 0);
    layout->addWidget(count, row, 1);
    windowHandles.panelTexts.insert(control.id, count);
}

static QGroupBox* makeGroup(const PanelGroup& group)
{
    auto* box = new QGroupBox(group.text);
    auto* layout = new QGridLayout(box);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setVerticalSpacing(group.kind == panelButton ? 4 : 1);
    int row = 0;
    if (group.listId)
        layout->addWidget(makeFilterList(group.listId), row++, 0);
    int columns = group.kind == panelButton ? 2 : 1, place = 0;
    for (const PanelControl& control : group.controls)
    {
        if (group.kind == panelCount)
            addCount(layout, row + place, control);
        else
            layout->addWidget(makeButton(control, group.kind), row + place / columns, place % columns);
        ++place;
    }
    return box;
}

QWidget* makeToolPanel()
{
    auto* panel = new QWidget;
    panel->setFocusPolicy(Qt::ClickFocus);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(6, 2, 6, 4);
    layout->setSpacing(4);
    for (const PanelGroup& group : panelGroups)
        layout->addWidget(makeGroup(group));
    layout->addStretch();
    windowHandles.panel = panel;
    return panel;
}
