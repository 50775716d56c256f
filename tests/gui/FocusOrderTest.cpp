// The way of the Tab key through every form: to all that the user works with, and never back up.
#include <gtest/gtest.h>

#include <QTabWidget>
#include <QTest>

#include "platform/qt/FormBinder.h"

namespace pw {
namespace {

/** What Tab stops at, in its order. */
QList<QWidget*> TabStops(QWidget& form) {
    QList<QWidget*> stops;
    for (QWidget* at = form.nextInFocusChain(); at != &form; at = at->nextInFocusChain()) {
        const bool own = !at->objectName().isEmpty() && !at->objectName().startsWith(u"qt_");
        const bool stop = (at->focusPolicy() & Qt::TabFocus) && at->isVisibleTo(&form);
        if (own && stop && !at->focusProxy()) stops << at;
    }
    return stops;
}

QRect PlaceOf(const QWidget& widget, const QWidget& form) {
    return QRect(widget.mapTo(&form, QPoint()), widget.size());
}

void CheckOrder(QWidget& form, const std::string& name) {
    const QList<QWidget*> stops = TabStops(form);
    for (qsizetype i = 1; i < stops.size(); ++i) {
        const QRect before = PlaceOf(*stops[i - 1], form);
        const QRect after = PlaceOf(*stops[i], form);
        // Up only into the next column.
        const bool up = after.bottom() <= before.top() && after.left() < before.right();
        EXPECT_FALSE(up) << name << ": " << stops[i - 1]->objectName().toStdString() << " to "
                         << stops[i]->objectName().toStdString();
    }
}

TEST(FocusOrder, GoesDownEveryForm) {
    for (const QString& name : formNames()) {
        const std::unique_ptr<QWidget> form = loadForm(name);
        ASSERT_TRUE(form) << name.toStdString();
        form->show();
        QTest::qWait(1);
        EXPECT_FALSE(TabStops(*form).isEmpty()) << name.toStdString();
        auto* tabs = form->findChild<QTabWidget*>();
        for (int page = 0; page < (tabs ? tabs->count() : 1); ++page) {
            if (tabs) tabs->setCurrentIndex(page);
            QTest::qWait(1);
            CheckOrder(*form, name.toStdString());
        }
    }
}

}  // namespace
}  // namespace pw
