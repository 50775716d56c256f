#pragma once
// One run of the HTML parser with bounds on the memory and the time that it may take. All memory
// of the run is given back at once.
#include <gumbo.h>

#include <csetjmp>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace pw::dom {

class HtmlTree {
  public:
    HtmlTree();
    ~HtmlTree();
    HtmlTree(const HtmlTree&) = delete;
    HtmlTree& operator=(const HtmlTree&) = delete;

    /** The tree of a page, or of a fragment within an element of that tag. It lives as long as
     *  this object and `text` do. None when it took too much memory or (tooSlow) time. */
    const GumboOutput* parse(std::string_view text, GumboTag context = GUMBO_TAG_LAST);
    bool tooSlow() const { return tooSlow_; }

  private:
    struct Large;
    struct Free {
        Free* next;
    };
    static constexpr std::size_t kClasses = 64;  ///< of blocks up to 1,024 bytes, by 16

    static void* allocate(void* self, std::size_t size);
    static void release(void* self, void* block);
    void* take(std::size_t size);
    void* takeLarge(std::size_t size);
    void give(void* block);
    void checkLimits();
    double cpuSeconds() const;

    std::vector<std::unique_ptr<char[]>> chunks_;
    char* next_ = nullptr;
    std::size_t left_ = 0;
    Free* free_[kClasses + 1] = {};
    Large* large_ = nullptr;
    std::size_t used_ = 0;
    std::size_t calls_ = 0;
    double deadline_ = 0;
    bool tooSlow_ = false;
    std::jmp_buf abort_;
};

}  // namespace pw::dom
