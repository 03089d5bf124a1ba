#include "common/MainWidget.h"

#include <QPointer>
#include <QWidget>

namespace {
QPointer<QWidget>& mainWidgetSlot()
{
    static QPointer<QWidget> widget;
    return widget;
}
} // namespace

void SetMainWidget(QWidget* widget)
{
    mainWidgetSlot() = widget;
}

QWidget* MainWidget()
{
    return mainWidgetSlot().data();
}
