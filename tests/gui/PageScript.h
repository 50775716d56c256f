#pragma once
// Scripts that a test asks of a page in a real browser view.
#include <gtest/gtest.h>

#include <QTest>
#include <QVariant>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <memory>
#include <optional>

namespace pw::test {

/** Runs the script and waits for its value. */
inline QVariant RunInPage(QWebEnginePage& page, const QString& script,
                          quint32 world = QWebEngineScript::MainWorld) {
    // The page may answer after this has given up.
    const auto answer = std::make_shared<std::optional<QVariant>>();
    page.runJavaScript(script, world, [answer](const QVariant& value) { *answer = value; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return answer->has_value(); }, 30000))
        << script.toStdString();
    return answer->value_or(QVariant());
}

}  // namespace pw::test
