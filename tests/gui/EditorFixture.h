#pragma once
// A real editor view with a page in it, and ways to look into both trees.
#include <gtest/gtest.h>
#include <QApplication>
#include <QEventLoop>
#include <QTest>
#include <QTimer>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <algorithm>

#include "gui/PageScript.h"
#include "platform/Text.h"
#include "platform/qt/editor/EditorView.h"

namespace pw::test {

/** A page with something of everything. */
inline constexpr char kPage[] =
    "<!DOCTYPE html>\r\n<HTML><Head><title>A page</title>\r\n</head>\r\n"
    "<BODY bgcolor=white onload='go()'>\r\n<h1>Heading</h1>\r\n"
    "<P align=left>One <b>two</b> three &amp; four\r\n<p>Second paragraph\r\n"
    "<TABLE border=0 width=200><tr><td>cell one<td>cell two</table>\r\n"
    "<img src='data:image/gif;base64,R0lGODlhAQABAAAAACwAAAAAAQABAAAC' width=80 height=60 "
    "alt=picture>\r\n<!-- remark -->\r\n"
    "<form><input name=q size=10 value=ask></form>\r\n</BODY></HTML>\r\n";

class EditorFixture : public testing::Test {
  protected:
    void open(const std::string& html, const std::string& base = "file:///tmp/") {
        loaded = html;
        document = dom::Document::parse(html);
        ASSERT_TRUE(document);
        view.resize(900, 700);
        view.show();
        view.Show(*document, base);
        view.Flush();
        ASSERT_FALSE(view.Busy());
        view.activateWindow();
        keyboard()->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    ~EditorFixture() override { view.Clear(); }

    QWidget* keyboard() { return view.view()->focusProxy(); }

    /** Runs a script in the editor's world and waits for its value. */
    QVariant evaluate(const QString& script) {
        return test::RunInPage(*view.view()->page(), script, QWebEngineScript::ApplicationWorld);
    }

    /** A place in an element, as parts of its width and height, for the mouse. */
    QPoint at(const QString& selector, double x = 0.5, double y = 0.5) {
        const QRectF box = boxOf(selector);
        return {int(box.left() + box.width() * x), int(box.top() + box.height() * y)};
    }
    QRectF boxOf(const QString& selector) {
        const QVariantList box =
            evaluate(QStringLiteral("(b => [b.left, b.top, b.width, b.height])"
                                    "(document.querySelector('%1').getBoundingClientRect())")
                         .arg(selector))
                .toList();
        return {box[0].toDouble(), box[1].toDouble(), box[2].toDouble(), box[3].toDouble()};
    }

    /** The view's tree as text. */
    std::string viewTree() {
        return evaluate(QStringLiteral(R"((function ser(n) {
            if (n.nodeType == 3) return '"' + n.data + '"';
            if (n.nodeType == 8) return '<!' + n.data + '>';
            let s = '';
            if (n.nodeType == 1) {
                s = '<' + n.localName;
                s += [...n.attributes].map(a => ' ' + a.name.toLowerCase() + '=' + a.value)
                         .sort().join('') + '>';
            }
            for (const child of pw.childrenOf(n)) s += ser(child);
            return n.nodeType == 1 ? s + '</>' : s;
        })(document))"))
            .toString()
            .toStdString();
    }

  public:
    /** The document's tree in the same form. */
    static std::string tree(const dom::Node& node) {
        if (node.isText()) return '"' + node.data() + '"';
        if (node.isComment()) return "<!" + node.data() + ">";
        std::string text;
        if (node.isElement()) {
            text = "<" + node.localName();
            std::vector<std::string> attributes;
            for (const dom::Attribute& attribute : node.attributes())
                attributes.push_back(
                    QString::fromStdString(attribute.name).toLower().toStdString() + "=" +
                    attribute.value);
            std::sort(attributes.begin(), attributes.end());
            for (const std::string& attribute : attributes)
                text += " " + attribute;
            text += ">";
        }
        for (const dom::Node* child = node.firstChild(); child; child = child->next())
            text += tree(*child);
        return node.isElement() ? text + "</>" : text;
    }

    /** As a parser sees it, to which texts beside each other are one. */
    static std::string parsedTree(const dom::Node& node) {
        return ReplaceAll(tree(node), "\"\"", "");
    }

  protected:
    std::string documentTree() { return tree(*document->root()); }

    /** Puts the caret into the first text that holds `mark`, behind it. */
    dom::Node* caretBehind(const std::string& mark) {
        for (dom::Node* node = document->root(); node; node = node->following()) {
            if (!node->isText()) continue;
            const std::size_t at = node->data().find(mark);
            if (at == std::string::npos) continue;
            document->collapse({node, at + mark.size()});
            view.Flush();
            return node;
        }
        ADD_FAILURE() << "no text holds " << mark;
        return nullptr;
    }

    void select(const std::string& text) {
        for (dom::Node* node = document->root(); node; node = node->following()) {
            if (!node->isText()) continue;
            const std::size_t at = node->data().find(text);
            if (at == std::string::npos) continue;
            dom::Selection selection;
            selection.type = dom::SelectionType::Text;
            selection.anchor = {node, at};
            selection.focus = {node, at + text.size()};
            document->setSelection(selection);
            view.Flush();
            return;
        }
        ADD_FAILURE() << "no text holds " << text;
    }

    void type(const char* text) {
        QTest::keyClicks(keyboard(), text);
        view.Flush();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(keyboard(), key, modifiers);
        view.Flush();
    }

    std::string body() { return document->innerHTML(*document->body()); }

    std::string loaded;
    std::unique_ptr<dom::Document> document;
    EditorView view;
};

}  // namespace pw::test
