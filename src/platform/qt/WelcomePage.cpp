#include "platform/qt/WelcomePage.h"

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace pw {

namespace {

constexpr int contentWidth = 460;

QPushButton* makeButton(const QString& text, const char* icon, QWidget* parent) {
    auto* button = new QPushButton(QIcon::fromTheme(QString::fromLatin1(icon)), text, parent);
    button->setIconSize(QSize(22, 22));
    button->setMinimumHeight(40);
    button->setAutoDefault(true);
    return button;
}

}  // namespace

WelcomePage::WelcomePage(QWidget* parent) : QWidget(parent) {
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);

    auto* heading = new QLabel(tr("Welcome to Pagewick"), this);
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * 2.0);
    large.setWeight(QFont::Light);
    heading->setFont(large);
    subtitle_ =
        new QLabel(tr("Make a web site as easily as a letter: start a new project, or go on "
                      "with one of yours."),
                   this);
    subtitle_->setWordWrap(true);

    auto* create = makeButton(tr("&New Project"), "document-new", this);
    create->setObjectName(QStringLiteral("cmdNewProject"));
    create->setDefault(true);
    auto* open = makeButton(tr("&Open Project…"), "document-open", this);
    open->setObjectName(QStringLiteral("cmdOpenProject"));
    connect(create, &QPushButton::clicked, this, &WelcomePage::newProject);
    connect(open, &QPushButton::clicked, this, &WelcomePage::openProject);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addWidget(create, 1);
    buttons->addWidget(open, 1);

    recentHeading_ = new QLabel(tr("Recent projects"), this);
    QFont bold = recentHeading_->font();
    bold.setBold(true);
    recentHeading_->setFont(bold);
    recent_ = new QListWidget(this);
    recent_->setObjectName(QStringLiteral("lstRecent"));
    recent_->setAccessibleName(recentHeading_->text());
    recent_->setFrameShape(QFrame::NoFrame);
    recent_->setIconSize(QSize(32, 32));
    recent_->setSpacing(2);
    recent_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    recent_->setTextElideMode(Qt::ElideMiddle);
    const auto choose = [this](const QListWidgetItem* item) {
        emit openRecent(item->data(Qt::UserRole).toString());
    };
    connect(recent_, &QListWidget::itemActivated, this, choose);
    connect(recent_, &QListWidget::itemClicked, this, choose);

    auto* column = new QVBoxLayout;
    column->setSpacing(10);
    column->addStretch(2);
    column->addWidget(heading);
    column->addWidget(subtitle_);
    column->addSpacing(14);
    column->addLayout(buttons);
    column->addSpacing(22);
    column->addWidget(recentHeading_);
    column->addWidget(recent_, 5);
    column->addStretch(3);
    auto* content = new QWidget(this);
    content->setMaximumWidth(contentWidth);
    content->setMinimumWidth(qMin(contentWidth, 300));
    content->setLayout(column);
    auto* row = new QHBoxLayout(this);
    row->addStretch(1);
    row->addWidget(content, 100);
    row->addStretch(1);

    setTabOrder(create, open);
    setTabOrder(open, recent_);
    setFocusProxy(create);
    setRecentProjects({});
    showColors();
}

void WelcomePage::setRecentProjects(const QStringList& paths) {
    recent_->clear();
    for (const QString& path : paths) {
        const QFileInfo file(path);
        QString folder = QDir::toNativeSeparators(file.path());
        if (folder.startsWith(QDir::homePath())) {
            folder = QLatin1Char('~') + folder.mid(QDir::homePath().size());
        }
        auto* item = new QListWidgetItem(QIcon::fromTheme(QStringLiteral("folder-html")),
                                         file.completeBaseName() + QLatin1Char('\n') + folder);
        item->setData(Qt::UserRole, path);
        item->setToolTip(path);
        recent_->addItem(item);
    }
    recentHeading_->setVisible(!paths.isEmpty());
    recent_->setVisible(!paths.isEmpty());
}

void WelcomePage::showColors() {
    QPalette faint = palette();
    faint.setColor(QPalette::WindowText, palette().color(QPalette::PlaceholderText));
    subtitle_->setPalette(faint);
}

void WelcomePage::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // The first change comes while the page is still being made.
    if (event->type() == QEvent::PaletteChange && subtitle_) showColors();
}

}  // namespace pw
