#include "platform/qt/editor/EventRelay.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <optional>
#include <utility>

#include "platform/qt/editor/EditorBridge.h"

namespace pw {

EventRelay::EventRelay(EditorBridge& bridge, Events& events, NodeOf nodeOf)
    : events_(events), nodeOf_(std::move(nodeOf)) {
    connect(&bridge, &EditorBridge::isStyled, this, [this] { tell(&Events::styled); });
    connect(&bridge, &EditorBridge::hasFocus, this, [this] { tell(&Events::focused); });
    connect(&bridge, &EditorBridge::mouseMoved, this, &EventRelay::mouse);
    connect(&bridge, &EditorBridge::keyReleased, this,
            [this](int code, bool alt, bool control, bool shift) {
                post([this, press = KeyPress{code, alt, control, shift}] {
                    if (events_.keyUp) events_.keyUp(press);
                });
            });
    connect(&bridge, &EditorBridge::commandAsked, this, [this](const QString& name) {
        post([this, name = name.toStdString()] {
            if (events_.command) events_.command(name);
        });
    });
    connect(&bridge, &EditorBridge::isPlaced, this, [this](qint64 node, const QString& json) {
        post([this, node, placement = placementOf(json)] {
            dom::Node* object = nodeOf_(node);
            if (object && events_.placed) events_.placed(*object, placement);
        });
    });
    connect(&bridge, &EditorBridge::markupDropped, this,
            [this](const QString& html, const QString& text) {
                post([this, html = html.toStdString(), text = text.toStdString()] {
                    if (events_.dropped) events_.dropped(html, text);
                });
            });
}

void EventRelay::post(std::function<void()> event) {
    QMetaObject::invokeMethod(this, std::move(event), Qt::QueuedConnection);
}

void EventRelay::tell(std::function<void()> Events::*event) {
    post([this, event] {
        if (events_.*event) (events_.*event)();
    });
}

void EventRelay::changed() {
    if (changedPosted_) return;
    changedPosted_ = true;
    post([this] {
        changedPosted_ = false;
        if (events_.changed) events_.changed();
    });
}

void EventRelay::mouse(const QString& what, qint64 node) {
    constexpr std::pair<const char*, std::function<void()> Events::*> table[] = {
        {"up", &Events::mouseUp},
        {"over", &Events::mouseOver},
        {"double", &Events::doubleClick},
        {"menu", &Events::contextMenu}};
    for (const auto& [name, event] : table)
        if (what == QLatin1String(name)) tell(event);
    if (what == QLatin1String("down"))
        post([this, node] {
            dom::Node* hit = nodeOf_(node);
            if (events_.mouseDown)
                events_.mouseDown(hit && hit->isText() ? hit->parentElement() : hit);
        });
}

Placement EventRelay::placementOf(const QString& json) {
    const QJsonObject object = QJsonDocument::fromJson(json.toUtf8()).object();
    const auto part = [&](const char* name) -> std::optional<int> {
        const QJsonValue value = object[QLatin1String(name)];
        return value.isDouble() ? std::optional(value.toInt()) : std::nullopt;
    };
    return {part("left"), part("top"), part("width"), part("height")};
}

}  // namespace pw
