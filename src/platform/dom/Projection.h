#pragma once
// The wire between a Document and the view that shows it. The view holds a tree of the same nodes
// under the same ids. Batches from the view name, for each parent whose children changed, its
// ordered list of children; changes from here go out the same way. No toolkit: text in, text out.
// The messages are described in docs/editor-protocol.md.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/dom/Document.h"

namespace pw::dom {

class Projection : public DocumentObserver {
  public:
    explicit Projection(Document& document);
    ~Projection() override;
    Projection(const Projection&) = delete;
    Projection& operator=(const Projection&) = delete;

    /** The whole tree for a fresh view, JSON. Forgets what an earlier view was told; the view must
     *  acknowledge it like any message. */
    std::string snapshot();
    /** What changed by the program since the last call, JSON; "" when nothing did, or while the
     *  view has not yet answered the last message. Carries the number of the last batch applied. */
    std::string takeOutgoing();
    bool hasOutgoing() const;
    /** The view has applied the message of this number. */
    void acknowledge(std::uint32_t message);
    /** The view could not apply the message: the next one is the whole tree. */
    void viewIsLost(std::uint32_t message);
    /** True when the view has seen everything and owes no answer. */
    bool settled() const;

    enum class Result { Applied, NeedsSnapshot, Malformed };
    /** Applies one batch of the view as one part of an undo step. NeedsSnapshot: an id was unknown
     *  or a number was missing, and nothing was changed. Ask the view for a full batch, which is
     *  reconciled with the tree; until it comes every other batch is answered the same. */
    Result applyBatch(std::string_view json);

    /** The number under which the view knows a node; 0 for none. */
    std::int64_t viewId(const Node* node) const;
    /** The node of a number of the view's; none when it is unknown or no longer in the page. */
    Node* nodeOfView(std::int64_t id) const;

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
