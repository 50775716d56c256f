#include "platform/qt/PreviewView.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QWebEngineView>

#include "platform/qt/QtText.h"

namespace pw {
namespace {

struct PreviewViewTest : testing::Test {
    QTemporaryDir folder;
    PreviewView view;
    std::string base = fromQt(QUrl::fromLocalFile(folder.path() + "/").toString());

    void show(const std::string& html) {
        view.resize(400, 300);
        view.show();
        view.showHtml(html, base);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !view.Busy(); }, 20000));
    }
    std::string ask(const char* script) {
        QVariant answer;
        bool answered = false;
        view.findChild<QWebEngineView*>()->page()->runJavaScript(script,
                                                                 [&](const QVariant& value) {
                                                                     answer = value;
                                                                     answered = true;
                                                                 });
        EXPECT_TRUE(QTest::qWaitFor([&] { return answered; }, 10000));
        return fromQt(answer.toString());
    }
};

TEST_F(PreviewViewTest, ShowsPicturesAndRunsScripts) {
    QImage picture(7, 5, QImage::Format_RGB32);
    ASSERT_TRUE(picture.save(folder.filePath("a.png")));
    show("<!doctype html><title>x</title><img src=a.png><script>document.title='ran'</script>");
    EXPECT_EQ(ask("document.title"), "ran");
    EXPECT_EQ(ask("String(document.images[0].naturalWidth)"), "7");
    EXPECT_EQ(ask("document.compatMode"), "CSS1Compat");
    base = fromNativeQt(folder.path() + "/");  // as the program writes it
    show("<img src=a.png>");
    EXPECT_EQ(ask("String(document.images[0].naturalWidth)"), "7");
}

TEST_F(PreviewViewTest, LargePagesAreShownWhole) {
    std::string html = "<!doctype html><title>x</title>";
    for (int i = 0; i < 60000; ++i)
        html += "<p>A paragraph of the large page, \"quoted\".</p>\n";
    html += "<p id=last>end</p><script>document.title='ran'</script>";
    show(html);
    EXPECT_TRUE(QTest::qWaitFor([this] { return ask("document.title") == "ran"; }, 20000));
    EXPECT_EQ(ask("document.getElementById('last').textContent"), "end");
    EXPECT_EQ(ask("document.baseURI"), base);
}

TEST_F(PreviewViewTest, LinksAreAskedFor) {
    show("<a href=b.htm id=a>b</a>");
    std::string asked;
    view.events.clicked = [&](const std::string& href, const std::string&) {
        asked = href;
        return false;
    };
    ask("document.getElementById('a').click()");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !asked.empty(); }, 5000));
    EXPECT_EQ(asked, base + "b.htm");
}

}  // namespace
}  // namespace pw
