// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"

#include <QList>
#include <QString>

#include <optional>

class EasAttachmentContainer;
class PreparedStatements;

/**
 * Rows of the attachments of events. An attachment belongs to the event, which is named by its local
 * identifier, and not to an account.
 *
 * Belongs to EasDatabase, whose connection outlives it. Main thread only.
 */
class AttachmentRows
{
public:
    explicit AttachmentRows(PreparedStatements &statements);

    /** An attachment with this content identifier that is there already is left as it is. */
    bool add(const QString &eventId, const EasAttachmentContainer &attachment) const;
    Lookup<std::optional<EasAttachmentContainer>> byFileReference(
        const QString &eventId, const QString &fileReference) const;
    Lookup<std::optional<EasAttachmentContainer>> byContentId(
        const QString &eventId, const QString &contentId) const;
    Lookup<QList<EasAttachmentContainer>> ofEvent(const QString &eventId) const;
    bool updateFileReference(const QString &eventId, const EasAttachmentContainer &attachment) const;
    bool updateContentId(const QString &eventId, const EasAttachmentContainer &attachment) const;
    bool removeByContentId(const QString &eventId, const QString &contentId) const;
    bool removeOfEvent(const QString &eventId) const;
    bool removeByFileReference(const QString &eventId, const QString &fileReference) const;
    /** Whether the event has an attachment with this content identifier or file reference. */
    Lookup<Existence> presence(const QString &eventId, const QString &uniqueId) const;
    /** Removes rows with a file reference whose event is in no account's mapping. */
    bool removeStrays() const;

private:
    PreparedStatements &mStatements;
};
