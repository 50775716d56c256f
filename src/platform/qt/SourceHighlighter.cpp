#include "platform/qt/SourceHighlighter.h"

#include <QTextBlock>
#include <QTextLayout>

#include "editing/SourceColoring.h"
#include "platform/qt/ColorButton.h"

namespace pw {

namespace {

/** A line longer than this stays plain behind it: laying out a line with ten thousands of pieces
 *  takes seconds. */
constexpr qsizetype longestColored = 8000;

/** What is known of a block; the state behind it stands in the block itself. */
struct BlockMark : QTextBlockUserData {
    int generation = 0;
    int stateBefore = 0;
};

std::u16string_view viewOf(const QString& text) {
    return {reinterpret_cast<const char16_t*>(text.utf16()), std::size_t(text.size())};
}

}  // namespace

SourceHighlighter::SourceHighlighter(QTextDocument& document)
    : QObject(&document), document_(document) {
    connect(&document, &QTextDocument::contentsChange, this, &SourceHighlighter::changed);
}

QColor SourceHighlighter::textColor(const SourceColors& colors) {
    return toQColor(colors.background).lightness() < 128 ? QColor(0xE8, 0xE8, 0xE8)
                                                         : QColor(Qt::black);
}

void SourceHighlighter::reset(const SourceColors& colors) {
    colors_ = colors;
    known_ = 0;
    ++generation_;
    const auto format = [this](SourcePart part) -> QTextCharFormat& {
        return formats_[int(part)] = QTextCharFormat();
    };
    format(SourcePart::Tag).setForeground(toQColor(colors.tag));
    format(SourcePart::Property).setForeground(toQColor(colors.property));
    format(SourcePart::Value).setForeground(toQColor(colors.value));
    const QColor text = textColor(colors);
    const QColor back = toQColor(colors.background);
    format(SourcePart::Comment)
        .setForeground(QColor((text.red() + back.red()) / 2, (text.green() + back.green()) / 2,
                              (text.blue() + back.blue()) / 2));
    formats_[int(SourcePart::Comment)].setFontItalic(true);
}

bool SourceHighlighter::isColored(const QTextBlock& block) const {
    const auto* mark = static_cast<const BlockMark*>(block.userData());
    return mark && mark->generation == generation_;
}

void SourceHighlighter::color(int firstBlock, int lastBlock) {
    QTextBlock block = document_.findBlockByNumber(qMin(known_, firstBlock));
    int state = block.previous().isValid() ? block.previous().userState() : 0;
    for (; block.isValid() && block.blockNumber() <= lastBlock; block = block.next()) {
        const int number = block.blockNumber();
        if (number >= firstBlock) {
            const auto* mark = static_cast<const BlockMark*>(block.userData());
            if (!isColored(block) || mark->stateBefore != state) colorBlock(block, state);
        }
        if (number >= known_) {
            const QString text = block.text();
            ColorSourceLine(viewOf(text), state);
            block.setUserState(state);
            known_ = number + 1;
        } else {
            state = block.userState();
        }
    }
}

void SourceHighlighter::colorBlock(QTextBlock& block, int state) {
    auto* mark = new BlockMark;
    mark->generation = generation_;
    mark->stateBefore = state;
    block.setUserData(mark);
    const QString text = block.text().left(longestColored);
    QList<QTextLayout::FormatRange> ranges;
    for (const SourceSpan& span : ColorSourceLine(viewOf(text), state)) {
        ranges.append({int(span.start), int(span.length), formats_[int(span.part)]});
    }
    if (ranges == block.layout()->formats()) return;
    block.layout()->setFormats(ranges);
    document_.markContentsDirty(block.position(), block.length());
}

void SourceHighlighter::changed(int position, int, int added) {
    QTextBlock block = document_.findBlock(position);
    known_ = qMin(known_, block.blockNumber());
    const QTextBlock last = document_.findBlock(position + added);
    for (; block.isValid(); block = block.next()) {
        if (auto* mark = static_cast<BlockMark*>(block.userData())) mark->generation = 0;
        if (block == last) break;
    }
}

}  // namespace pw
