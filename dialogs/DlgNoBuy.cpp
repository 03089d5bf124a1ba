#include "dialogs/DlgNoBuy.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

DlgNoBuy::DlgNoBuy(const QString& moduleName, QWidget* parent, const char* name, bool modal,
                   Qt::WindowFlags fl)
    : QDialog(parent, fl)
{
    setObjectName(QString::fromLatin1(name ? name : "DlgNoBuy"));
    setModal(modal);
    setWindowTitle(QStringLiteral("模块未购买"));

    const QString module =
        moduleName.isEmpty() ? QStringLiteral("此模块") : QStringLiteral("模块“%1”").arg(moduleName);
    textLabel_Notice = new QLabel(
        QStringLiteral("您没有购买%1。\n该功能不能使用，如需使用，请与软件供应商联系。").arg(module),
        this);
    textLabel_Notice->setObjectName(QStringLiteral("textLabel_Notice"));
    textLabel_Notice->setWordWrap(true);
    textLabel_Notice->setAlignment(Qt::AlignCenter);

    pushButton_OK = new QPushButton(QStringLiteral("确定"), this);
    pushButton_OK->setObjectName(QStringLiteral("pushButton_OK"));
    pushButton_OK->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(pushButton_OK);
    buttons->addStretch(1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 12);
    layout->setSpacing(12);
    layout->addWidget(textLabel_Notice);
    layout->addLayout(buttons);
    resize(QSize(340, 120).expandedTo(minimumSizeHint()));

    connect(pushButton_OK, &QPushButton::clicked, this, &QDialog::accept);
}
