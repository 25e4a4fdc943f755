// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/event.h"
#include "simulator/wholeitem.h"

namespace Simulator {

/** An event or a series in a folder. */
class EventItem : public WholeItem
{
public:
    using Value = Event;

    explicit EventItem(const Event &event);
    /** Gives the event an identifier and a stamp where it has none. */
    static ItemPtr make(const Event &event) { return std::make_shared<EventItem>(event); }
    /** As a client sends it; null if it does not fit. */
    static ItemPtr fromUpload(const WbxmlNode &applicationData, const UploadShape &upload);

    const Event &value() const { return mEvent; }

    QString className() const override { return QStringLiteral("Calendar"); }
    QDateTime date() const override;
    QVector<WbxmlNode> elements(const ItemShape &shape) const override;
    ItemPtr withChanges(const WbxmlNode &applicationData, const UploadShape &upload) const override;
    ItemPtr withInstance(const QString &instanceId, const WbxmlNode &applicationData,
        const UploadShape &upload) const override;
    ItemPtr withoutInstance(const QString &instanceId, const UploadShape &upload) const override;
    std::optional<ItemAttachment> attachment(int number) const override;

private:
    static ItemPtr orNull(const std::optional<Event> &event) { return event ? make(*event) : nullptr; }

    Event mEvent;
};

} // namespace Simulator
