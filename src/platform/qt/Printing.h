#pragma once
#include <QPrinter>
#include <QTextDocument>

#include <memory>

class QWebEngineView;

namespace pw {

/** Asks which printer, or which PDF file, and how. None when the user thinks better of it. */
std::unique_ptr<QPrinter> askForPrinter(const QString& title, QWidget* parent);

/** Prints what the view shows, the way its style sheets want it on paper. Returns when it is done;
 *  the user can do nothing meanwhile. False when it could not be printed. */
bool printPage(QWebEngineView& view, std::unique_ptr<QPrinter> printer);

/** The same for text. */
bool printText(const QTextDocument& text, QPrinter& printer);

}  // namespace pw
