#include "mainwindow/MemorySurfaces.h"

#include <algorithm>
#include <utility>

namespace pw {

// --- The source box -----------------------------------------------------------------------------

void MemorySourceBox::Become(std::string text) {
    undo_.push_back(std::exchange(text_, std::move(text)));
    redo_.clear();
    if (owner_.events.sourceTyped) owner_.events.sourceTyped();
}

void MemorySourceBox::UserType(const std::string& text) {
    Become(text);
    start_ = text_.size();
    length_ = 0;
}

void MemorySourceBox::SetText(const std::string& text, const SourceColors& with) {
    text_ = text;
    colors = with;
    start_ = length_ = 0;
    undo_.clear();
    redo_.clear();
}

void MemorySourceBox::Select(std::size_t start, std::size_t length) {
    start_ = std::min(start, text_.size());
    length_ = std::min(length, text_.size() - start_);
}

void MemorySourceBox::ReplaceSelection(const std::string& text) {
    Become(text_.substr(0, start_) + text + text_.substr(start_ + length_));
    start_ += text.size();
    length_ = 0;
}

void MemorySourceBox::Undo() {
    if (undo_.empty()) return;
    redo_.push_back(std::exchange(text_, std::move(undo_.back())));
    undo_.pop_back();
    Select(start_, 0);
    if (owner_.events.sourceTyped) owner_.events.sourceTyped();
}

void MemorySourceBox::Redo() {
    if (redo_.empty()) return;
    undo_.push_back(std::exchange(text_, std::move(redo_.back())));
    redo_.pop_back();
    Select(start_, 0);
    if (owner_.events.sourceTyped) owner_.events.sourceTyped();
}

void MemorySourceBox::Cut() {
    Copy();
    if (length_ > 0) ReplaceSelection("");
}

void MemorySourceBox::Copy() {
    if (length_ > 0) clipboard_ = text_.substr(start_, length_);
}

void MemorySourceBox::Paste() {
    if (!clipboard_.empty()) ReplaceSelection(clipboard_);
}

// --- Windows ------------------------------------------------------------------------------------

MemoryDocument::~MemoryDocument() {
    std::erase(window_.documents, this);
    if (window_.front == this) window_.front = nullptr;
}

void MemoryDocument::BringToFront() {
    visible_ = true;
    if (window_.front == this) return;
    window_.front = this;
    if (events.activated) events.activated();
}

std::unique_ptr<DocumentSurface> MemoryMainWindow::CreateDocument() {
    auto document = std::make_unique<MemoryDocument>(*this);
    if (makeEditor) document->editor = makeEditor();
    documents.push_back(document.get());
    return document;
}

void MemoryMainWindow::Close() {
    if (closed || (events.queryUnload && !events.queryUnload())) return;
    closed = true;
    if (events.unload) events.unload();
}

}  // namespace pw
