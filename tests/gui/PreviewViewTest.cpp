#include "platform/qt/PreviewView.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QWebEngineView>

#include "gui/PageScript.h"
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
        auto& page = *view.findChild<QWebEngineView*>()->page();
        return fromQt(test::RunInPage(page, QString::fromUtf8(script)).toString());
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
    show(
        "<a href=b.htm id=own>b</a><a href=c.htm><b id=inner>c</b></a>"
        "<a href=d.htm target=_blank id=window>d</a>"
        "<a href='JavaScript:void(0)' id=nothing onclick=\"document.title='pressed'\">e</a>"
        "<a href='javascript:void(0)'><b id=within>f</b></a>");
    std::vector<std::string> asked;
    view.events.clicked = [&](const std::string& href, const std::string&) {
        asked.push_back(href);
        return false;
    };
    struct Row {
        const char* id;
        const char* leadsTo;  ///< none: nothing happens
    };
    for (const Row& row : {Row{"nothing", nullptr},
                           {"within", nullptr},
                           {"own", "b.htm"},
                           {"inner", "c.htm"},
                           {"window", "d.htm"}}) {
        asked.clear();
        ask(("document.getElementById('" + std::string(row.id) + "').click()").c_str());
        const bool wasAsked =
            QTest::qWaitFor([&] { return !asked.empty(); }, row.leadsTo ? 5000 : 200);
        EXPECT_EQ(wasAsked ? asked[0] : "", row.leadsTo ? base + row.leadsTo : "") << row.id;
    }
    EXPECT_EQ(ask("document.title"), "pressed") << "the page's own scripts run all the same";
}

}  // namespace
}  // namespace pw
