#pragma once
// The text box in which the source of a page is shown and edited.
#include <cstddef>
#include <string>

#include "platform/DialogHost.h"

namespace pw {

/** Colours of the source view, 0x00BBGGRR. */
struct SourceColors {
    Color tag = 0;
    Color property = 0;
    Color value = 0;
    Color background = 0xFFFFFF;
};

/** The text box of the source view. Offsets are bytes of the UTF-8 text; lines end with CR LF in
 *  the text that goes in and out. */
class SourceBox {
  public:
    virtual ~SourceBox() = default;
    virtual std::string Text() const = 0;
    /** Shows a text, coloured, with the caret at its start; raises no typed event. */
    virtual void SetText(const std::string& text, const SourceColors& colors) = 0;
    virtual void Recolor(const SourceColors& colors) = 0;
    virtual std::size_t SelStart() const = 0;
    virtual std::size_t SelLength() const = 0;
    virtual void Select(std::size_t start, std::size_t length) = 0;
    virtual void ReplaceSelection(const std::string& text) = 0;
    virtual void Undo() = 0;
    virtual void Redo() = 0;
    virtual void Cut() = 0;
    virtual void Copy() = 0;
    virtual void Paste() = 0;
    virtual bool CanUndo() const = 0;
    virtual bool CanRedo() const = 0;
    virtual void SetFocus() = 0;
};

}  // namespace pw
