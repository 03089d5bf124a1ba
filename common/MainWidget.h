#pragma once
// The application's main widget, which the host registers with the library. It takes
// the place of the old application-wide main widget that events are sent to.

class QWidget;

void SetMainWidget(QWidget* widget);
QWidget* MainWidget();
