// Files and pictures dropped on a page in the real view, and pasted into it with the keyboard.
#include <QClipboard>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QWebEngineScript>

#include "gui/ShownProgram.h"

namespace pw {
namespace {

struct PageDropsViewTest : testing::Test {
    PageDropsViewTest() {
        shown.Press(3);
        dom::Document& document = Document();
        document.setInnerHTML(*document.body(), "<p>first line</p><p>second line</p>");
        document.collapse({document.tags("p")[0]->firstChild(), 5});
        document.clearHistory();
        shown.Page().WaitUntilReady();
        shown.View().SetFocus();
    }
    dom::Document& Document() { return shown.Page().Document(); }
    std::string Body() {
        shown.Page().WaitUntilReady();
        return Document().innerHTML(*Document().body());
    }
    QString Picture(const char* name) {
        const std::string path = outer.folder.Native(name);
        QImage picture(6, 4, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        EXPECT_TRUE(picture.save(QString::fromStdString(path)));
        return QString::fromStdString(path);
    }
    void ExpectBody(const std::string& body) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return Body() == body; }, 5000));
        EXPECT_EQ(Body(), body);
    }
    void Drag(QEvent&& event) { QCoreApplication::sendEvent(shown.View().view(), &event); }

    test::TestContext outer;
    test::ShownProgram shown{outer};
};

TEST_F(PageDropsViewTest, ADroppedPictureStandsWhereItWasDropped) {
    // Far to the right of the second paragraph: its end.
    double middle = 0;
    bool known = false;
    shown.View().view()->page()->runJavaScript(
        "const box = document.querySelectorAll('p')[1].getBoundingClientRect();"
        "box.top + box.height / 2",
        QWebEngineScript::ApplicationWorld, [&](const QVariant& answer) {
            middle = answer.toDouble();
            known = true;
        });
    ASSERT_TRUE(QTest::qWaitFor([&] { return known; }, 5000));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(Picture("my house.png"))});
    const QPointF place(400, middle);
    Drag(QDragEnterEvent(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier));
    // The page must want it, or the desktop lets nothing fall.
    EXPECT_TRUE(QTest::qWaitFor([&] {
        QDragMoveEvent move(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(shown.View().view(), &move);
        return move.isAccepted() && move.dropAction() == Qt::CopyAction;
    }));
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(shown.View().view(), &drop);
    EXPECT_TRUE(drop.isAccepted());
    const std::string image =
        "<img src=\"media/my_house.png\" alt=\"my house\" width=\"6\" height=\"4\">";
    ExpectBody("<p>first line</p><p>second line" + image + "</p>");
    // Typing goes on behind it, and each can be undone.
    QTest::keyClicks(shown.Keyboard(), "!");
    ExpectBody("<p>first line</p><p>second line" + image + "!</p>");
    QTest::keyClick(shown.Keyboard(), Qt::Key_Z, Qt::ControlModifier);
    ExpectBody("<p>first line</p><p>second line" + image + "</p>");
    QTest::keyClick(shown.Keyboard(), Qt::Key_Z, Qt::ControlModifier);
    ExpectBody("<p>first line</p><p>second line</p>");
}

TEST_F(PageDropsViewTest, TheClipboardIsPasted) {
    const auto paste = [&](QMimeData* data) {
        QGuiApplication::clipboard()->setMimeData(data);
        QTest::keyClick(shown.Keyboard(), Qt::Key_V, Qt::ControlModifier);
    };
    auto* files = new QMimeData;
    files->setUrls({QUrl::fromLocalFile(Picture("a.png"))});
    files->setText("file of a file manager");
    paste(files);
    const std::string a = "<img src=\"media/a.png\" alt=\"a\" width=\"6\" height=\"4\">";
    ExpectBody("<p>first" + a + " line</p><p>second line</p>");

    auto* picture = new QMimeData;
    picture->setImageData(QImage(3, 2, QImage::Format_RGB32));
    picture->setHtml("<meta charset=utf-8><img src='https://example.org/x.png'>");
    paste(picture);
    const std::string b = "<img src=\"media/picture.png\" alt=\"\" width=\"3\" height=\"2\">";
    ExpectBody("<p>first" + a + b + " line</p><p>second line</p>");

    auto* markup = new QMimeData;
    markup->setHtml("<p class=MsoNormal><span lang=de>new</span></p><p>more<o:p></o:p></p>");
    paste(markup);
    ExpectBody("<p>first" + a + b + "</p><p>new</p><p>more</p><p> line</p><p>second line</p>");
    QTest::keyClicks(shown.Keyboard(), "!");
    ExpectBody("<p>first" + a + b + "</p><p>new</p><p>more!</p><p> line</p><p>second line</p>");
}

}  // namespace
}  // namespace pw
