#pragma once
// What the user edits as one: merge variables. Their text belongs to the project, which writes it
// anew with each new value; whatever else gets into one would go with it.
#include <string>
#include <vector>

#include "platform/dom/ViewBatch.h"

namespace pw::dom {

bool isUnit(const Node& node);
/** The unit that holds this node or is it; none. */
Node* unitAround(Node* node);

/**
 * Keeps units whole through a batch of the view: made when the batch is worked out, before it is
 * applied. What the view has typed into one is moved out beside it, one that it has cut is gone
 * whole, a copy that it has made of one for an empty paragraph is none, and formatting of all that
 * a unit holds stands around it.
 */
class UnitGuard {
  public:
    UnitGuard(Document& document, const ViewBatch& batch);
    /** Within the step of the batch, when its selection is set. The changes are the program's. */
    void mend();

  private:
    struct Touched {
        Node* unit;
        std::string text;    ///< with its breaks as line feeds
        std::string markup;  ///< of its content
        const Node* only;    ///< its only child, if it is one
    };

    void touch(Node* unit);
    void findCopies(const ViewBatch& batch);
    bool isCopy(const Node& anchor) const;
    void mendText(const Touched& touched);
    void dissolve(Node& copy);
    void liftFormatting(const Touched& touched);

    Document& document_;
    std::vector<Touched> touched_;
    std::vector<Node*> unstyled_;  ///< that have been left with an empty style
    std::vector<Node*> newAnchors_;
    std::vector<std::string> going_;  ///< names of the units that leave their places
};

}  // namespace pw::dom
