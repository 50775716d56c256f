#pragma once
// Layers: objects that stand at a place of their own, over or under the text, by the declarations
// of their style attribute. Each command is one undo step and leaves the other declarations as they
// are written.
//
// What a command has put behind `position: absolute` in the style goes again when the object comes
// back into the text; what was declared in front of it counts again then. The attribute data-locked
// marks a layer that the editor neither moves nor resizes; browsers do not know it.
//
// Layers are either in front of the text (z-index 0 and above) or behind it (below 0). Front, back
// and the single steps are among the layers of the same side with the same positioned parent.
#include <functional>
#include <optional>

#include "platform/EditorSurface.h"
#include "platform/dom/Document.h"

namespace pw {

enum class LayerCommand {
    MakeAbsolute,  ///< and back into the text
    Lock,          ///< and unlock
    BringToFront,
    SendToBack,
    BringForward,
    SendBackward,
    SendBelowText,
    BringAboveText
};

/** Where an object would have to be put so that it does not jump when it leaves the text. */
using FreePlace = std::function<std::optional<Placement>(const dom::Node& object)>;

/** Latched: it is absolute, locked, behind or in front of the text. */
CommandState LayerState(const dom::Document& document, LayerCommand command);
/** False, and nothing changed, where it cannot run or there is nothing to do. */
bool RunLayerCommand(dom::Document& document, LayerCommand command, const FreePlace& freePlace);

/** Moves and resizes an object; sizes go into the attributes of objects that have them there, as
 *  long as no style says otherwise. One undo step; false when it is locked or nothing changes. */
bool PlaceObject(dom::Document& document, dom::Node& object, const Placement& placement);

}  // namespace pw
