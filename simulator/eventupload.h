// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/eventfields.h"

namespace Simulator {

/**
 * What an upload makes of an event, by the rules of its version. Each returns nothing where a server refuses:
 * elements that the version forbids or that only the server may set, elements that are missing, exceptions of
 * occurrences that there are not. Used once.
 */
class EventUpload
{
public:
    explicit EventUpload(const UploadShape &upload);

    std::optional<Event> added(const WbxmlNode &data);
    std::optional<Event> changed(const Event &before, const WbxmlNode &data);
    /** One occurrence, named by its InstanceId. */
    std::optional<Event> changedInstance(
        const Event &before, const QString &instanceId, const WbxmlNode &data);
    std::optional<Event> deletedInstance(const Event &before, const QString &instanceId);

private:
    bool allows(const WbxmlNode &data) const;
    bool apply(const WbxmlNode &data);
    bool applyZone(const WbxmlNode &data);
    bool applyDetails(const WbxmlNode &data);
    bool applyRule(const WbxmlNode &data);
    bool applyExceptions(const WbxmlNode &data);
    bool applyException(const WbxmlNode &node, const Event &before);
    bool applyOccurrence(const WbxmlNode &data, EventException &exception);
    void applyMarks(const WbxmlNode &data);
    std::optional<Event> finished();
    bool leavesToTheServer(const QString &element) const;
    EventContext context();

    const UploadShape mUpload;
    Event mEvent;
};

} // namespace Simulator
