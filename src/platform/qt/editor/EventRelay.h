#pragma once
// Passes on what happens in the view: from the calls of its scripts to the events of the surface.
#include <QObject>
#include <QString>

#include <functional>

#include "platform/EditorSurface.h"

namespace pw {

class EditorBridge;

class EventRelay : public QObject {
  public:
    using Events = EditorSurface::Events;
    /** The document's node of a number of the view; none for one that has gone. */
    using NodeOf = std::function<dom::Node*(qint64 node)>;

    /** Both outlive it. */
    EventRelay(EditorBridge& bridge, Events& events, NodeOf nodeOf);

    /** Runs an event when the browser's own work is done: its handlers may wait. */
    void post(std::function<void()> event);
    void tell(std::function<void()> Events::*event);
    /** Tells `changed`, once for all that comes before the handler runs. */
    void changed();

    /** Of the form of the protocol: CSS pixels, with parts left out. */
    static Placement placementOf(const QString& json);

  private:
    void mouse(const QString& what, qint64 node);

    Events& events_;
    NodeOf nodeOf_;
    bool changedPosted_ = false;
};

}  // namespace pw
