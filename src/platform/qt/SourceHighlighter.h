#pragma once
#include <QObject>
#include <QTextDocument>

#include "mainwindow/Surfaces.h"

namespace pw {

/** Colours the source lines that are looked at, when they are looked at: a page of a megabyte
 *  opens as quickly as a small one. */
class SourceHighlighter : public QObject {
    Q_OBJECT
  public:
    explicit SourceHighlighter(QTextDocument& document);
    /** Forgets what is coloured; to be called for a new text and for new colours. */
    void reset(const SourceColors& colors);
    /** Makes sure that these blocks have their colours. */
    void color(int firstBlock, int lastBlock);
    /** True when no colour of that block is missing. */
    bool isColored(const QTextBlock& block) const;
    /** Black or white, whichever is read on the background. */
    static QColor textColor(const SourceColors& colors);

  private:
    void changed(int position, int removed, int added);
    void colorBlock(QTextBlock& block, int state);
    QTextDocument& document_;
    SourceColors colors_;
    QTextCharFormat formats_[4];
    int known_ = 0;       ///< blocks in front of this one have their state
    int generation_ = 1;  ///< of what is coloured
};

}  // namespace pw
