#pragma once
// The wire between a Document and the view that shows it. The view holds a tree of the same nodes
// under the same ids. Batches from the view name, for each parent whose children changed, its
// ordered list of children; changes from here go out the same way. No toolkit: text in, text out.
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/dom/Document.h"

namespace pw::dom {

class Projection : public DocumentObserver {
  public:
    explicit Projection(Document& document);
    ~Projection() override;

    /** The whole tree for a fresh view, JSON. See docs/editor-protocol.md. */
    std::string snapshot();
    /** What changed by the program since the last call, JSON; "" when nothing did. Carries the
     *  number of the last batch applied. */
    std::string takeOutgoing();
    bool hasOutgoing() const;

    enum class Result { Applied, NeedsSnapshot, Malformed };
    /** Applies one batch of the view as one part of an undo step. NeedsSnapshot: an id was unknown
     *  or a number was missing; ask the view for a full batch, which replaces the body of the tree.
     */
    Result applyBatch(std::string_view json);

    /** Called when the next outgoing change is ready, at most once until it is taken. */
    std::function<void()> onOutgoing;

    void documentChanged(const Change&) override;
    void documentReloaded() override;
    void selectionChanged(Origin) override;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace pw::dom
