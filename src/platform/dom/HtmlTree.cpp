#include "platform/dom/HtmlTree.h"

#include <ctime>

#include <cstdlib>

namespace pw::dom {

namespace {

constexpr std::size_t kChunk = 256 * 1024;
constexpr std::size_t kHeader = 16;  // keeps what follows aligned for every type
constexpr std::size_t kMostMemory = 320u << 20;
constexpr double kSeconds = 4;
constexpr double kSecondsPerMegabyte = 0.15;

}  // namespace

struct HtmlTree::Large {
    Large* previous;
    Large* next;
    std::size_t size;
    std::size_t unused;
};

HtmlTree::HtmlTree() = default;

HtmlTree::~HtmlTree() {
    while (large_) {
        Large* next = large_->next;
        std::free(large_);
        large_ = next;
    }
}

const GumboOutput* HtmlTree::parse(std::string_view text, GumboTag context) {
    GumboOptions options = kGumboDefaultOptions;
    options.allocator = allocate;
    options.deallocator = release;
    options.userdata = this;
    options.max_errors = 0;
    options.fragment_context = context;
    deadline_ = cpuSeconds() + kSeconds + kSecondsPerMegabyte * double(text.size() >> 20);
    // The parser is C and knows no way to be stopped: leaving it from its allocator is the one that
    // loses nothing, since all that it holds is this object's.
    if (setjmp(abort_) != 0) return nullptr;
    return gumbo_parse_with_options(&options, text.data(), text.size());
}

void* HtmlTree::allocate(void* self, std::size_t size) {
    return static_cast<HtmlTree*>(self)->take(size);
}

void HtmlTree::release(void* self, void* block) {
    if (block) static_cast<HtmlTree*>(self)->give(block);
}

void* HtmlTree::take(std::size_t size) {
    checkLimits();
    const std::size_t kind = (size + 15) / 16;
    if (kind > kClasses) return takeLarge(size);
    if (Free* block = free_[kind]) {
        free_[kind] = block->next;
        return block;
    }
    const std::size_t need = kHeader + std::max<std::size_t>(kind, 1) * 16;
    if (left_ < need) {
        chunks_.push_back(std::make_unique_for_overwrite<char[]>(kChunk));
        next_ = chunks_.back().get();
        left_ = kChunk;
        used_ += kChunk;
    }
    *reinterpret_cast<std::size_t*>(next_) = kind;
    void* block = next_ + kHeader;
    next_ += need;
    left_ -= need;
    return block;
}

void* HtmlTree::takeLarge(std::size_t size) {
    used_ += size;
    auto* memory = static_cast<char*>(std::malloc(sizeof(Large) + kHeader + size));
    if (!memory || used_ > kMostMemory) {
        std::free(memory);
        std::longjmp(abort_, 1);
    }
    auto* large = new (memory) Large{nullptr, large_, size, 0};
    if (large_) large_->previous = large;
    large_ = large;
    *reinterpret_cast<std::size_t*>(memory + sizeof(Large)) = kClasses + 1;
    return memory + sizeof(Large) + kHeader;
}

void HtmlTree::give(void* block) {
    char* header = static_cast<char*>(block) - kHeader;
    const std::size_t kind = *reinterpret_cast<std::size_t*>(header);
    if (kind <= kClasses) {
        auto* unused = static_cast<Free*>(block);
        unused->next = free_[kind];
        free_[kind] = unused;
        return;
    }
    auto* large = reinterpret_cast<Large*>(header - sizeof(Large));
    (large->previous ? large->previous->next : large_) = large->next;
    if (large->next) large->next->previous = large->previous;
    used_ -= large->size;
    std::free(large);
}

void HtmlTree::checkLimits() {
    if (used_ > kMostMemory) std::longjmp(abort_, 1);
    if (++calls_ % 1024 != 0) return;
    if (cpuSeconds() > deadline_) {
        tooSlow_ = true;
        std::longjmp(abort_, 1);
    }
}

double HtmlTree::cpuSeconds() const {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

}  // namespace pw::dom
