#include "platform/qt/ExplorerPane.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace pw {

ExplorerPane::ExplorerPane(const QString& name, const QString& title, QWidget* content,
                           QWidget* parent)
    : QFrame(parent) {
    setObjectName(name);
    auto* heading = new QLabel(title, this);
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    heading->setBuddy(content);
    auto* close = new QToolButton(this);
    close->setText(QStringLiteral("\u00D7"));  // a theme's own sign for it is loud
    close->setAutoRaise(true);
    close->setToolTip(tr("Hide"));
    close->setAccessibleName(tr("Hide %1").arg(title));
    connect(close, &QToolButton::clicked, this, &ExplorerPane::closePressed);

    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 2, 2, 2);
    bar->addWidget(heading, 1);
    bar->addWidget(close);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addLayout(bar);
    content->setParent(this);
    content->setAccessibleName(title);
    column->addWidget(content, 1);
    setFocusProxy(content);
}

}  // namespace pw
