#include "project/omProj/Items.h"

#include "platform/Text.h"

namespace pw {

std::string KeyBlock(char letter, int number) {
    std::string block(kBlockWidth, '0');
    block[0] = letter;
    for (int at = kBlockWidth - 1; at > 0; --at, number /= 10)
        block[at] = static_cast<char>('0' + number % 10);
    return block;
}

int NumberOfKey(std::string_view key, char letter) {
    if (key.size() < kBlockWidth || key.size() % kBlockWidth != 0) return 0;
    const std::string_view block = key.substr(key.size() - kBlockWidth);
    if (block[0] != letter) return 0;
    int number = 0;
    for (const char digit : block.substr(1)) {
        if (digit < '0' || digit > '9') return 0;
        number = number * 10 + (digit - '0');
    }
    return number;
}

// Attachments ----------------------------------------------------------------------------------

Attachment::Attachment(class Attachments& owner, std::string key, int id, std::string filename)
    : owner_(&owner), key_(std::move(key)), id_(id), filename_(std::move(filename)) {}

bool Attachment::SetFilename(std::string_view filename) {
    if (filename == filename_) return true;
    if (owner_) {
        if (owner_->Find(filename)) return false;
        owner_->byPath_.erase(filename_);
    }
    filename_ = filename;
    if (owner_) owner_->byPath_.emplace(filename_, this);
    return true;
}

Attachment* Attachments::Add(std::string_view filename) {
    if (Attachment* present = Find(filename)) return present;
    return IsFull() ? nullptr : AddNumbered(filename, NextNumber());
}

Attachment* Attachments::AddNumbered(std::string_view filename, int number) {
    Attachment* added =
        Append(std::make_unique<Attachment>(*this, ownerKey_ + KeyBlock('A', number), number,
                                            std::string(filename)),
               number);
    byPath_.emplace(added->Filename(), added);
    return added;
}

Attachment* Attachments::Find(std::string_view filename) const {
    const auto found = byPath_.find(filename);
    return found == byPath_.end() ? nullptr : found->second;
}

std::unique_ptr<Attachment> Attachments::Remove(int index) {
    std::unique_ptr<Attachment> removed = TakeOut(index);
    if (!removed) return nullptr;
    byPath_.erase(removed->Filename());
    removed->owner_ = nullptr;
    return removed;
}

void Attachments::Clear() {
    byPath_.clear();
    RemoveAll();
}

// Tasks ------------------------------------------------------------------------------------------

Task* Tasks::Add(const std::string& key) {
    if (key.empty() || Count() >= kMaximumItems || byKey_.contains(key)) return nullptr;
    Task* added = items_.emplace_back(std::make_unique<Task>(key)).get();
    byKey_.emplace(key, added);
    return added;
}

Task* Tasks::Item(int index) const {
    return index >= 1 && index <= Count() ? items_[index - 1].get() : nullptr;
}

Task* Tasks::Item(const std::string& key) const {
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? nullptr : found->second;
}

std::unique_ptr<Task> Tasks::Remove(const std::string& key) {
    const auto found = byKey_.find(key);
    if (found == byKey_.end()) return nullptr;
    const auto at = std::find_if(items_.begin(), items_.end(),
                                 [&](const auto& item) { return item.get() == found->second; });
    std::unique_ptr<Task> removed = std::move(*at);
    items_.erase(at);
    byKey_.erase(found);
    return removed;
}

void Tasks::Clear() {
    byKey_.clear();
    items_.clear();
}

// Meta tags --------------------------------------------------------------------------------------

bool MetaTags::RemoveNamed(std::string_view name) {
    const int before = Count();
    for (int index = before; index >= 1; --index)
        if (EqualsNoCase(Item(index)->Name, name)) Remove(index);
    return Count() < before;
}

}  // namespace pw
