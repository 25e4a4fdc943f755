// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "easitems/containers/agefilter.h"
#include "protocol/wbxml/asprotocolitem.h"

#include <QList>
#include <QSharedPointer>

class AirSyncBasePreference;

/** How the server is to answer for one collection: age of items, forms of bodies, who wins a conflict. */
class AirSyncOptions : public AsProtocolItem, public AgeFilter
{
    Q_OBJECT

public:
    enum ServerClientConflictType : int { ClientReplacesServer = 0, ServerReplacesClient = 1 };
    Q_ENUM(ServerClientConflictType)

    enum MimeSupportType : int {
        MimeSupportUnset = -1,
        MimeNever = 0,
        MimeForSecureMessages = 1,
        MimeForAllMessages = 2
    };
    Q_ENUM(MimeSupportType)

    /** 0 leaves all text away, 1 to 7 cut at a size that grows, 8 cuts nothing. */
    enum MimeTruncationType : int { MimeTruncationUnset = -1, MimeTruncateAll = 0, MimeTruncateNothing = 8 };
    Q_ENUM(MimeTruncationType)

    explicit AirSyncOptions(QObject *parent = nullptr);

    /** A copy without a parent; the preferences, which nobody changes once they are set, are shared. */
    QSharedPointer<AirSyncOptions> copy() const;

    bool rightsManagmentSupport() const { return mValues.rightsManagmentSupport; }
    void setRightsManagmentSupport(bool support) { mValues.rightsManagmentSupport = support; }
    ServerClientConflictType conflicts() const { return mValues.conflicts; }
    void setConflicts(ServerClientConflictType conflicts) { mValues.conflicts = conflicts; }
    uint maxItems() const { return mValues.maxItems; }
    void setMaxItems(uint maxItems) { mValues.maxItems = maxItems; }
    QString getClass() const { return mValues.itemClass; }
    void setClass(const QString &itemClass) { mValues.itemClass = itemClass; }
    FilterType filter() const { return mValues.filter; }
    void setFilter(FilterType filter) { mValues.filter = filter; }
    MimeSupportType mimeSupport() const { return mValues.mimeSupport; }
    void setMimeSupport(MimeSupportType support) { mValues.mimeSupport = support; }
    MimeTruncationType mimeTruncation() const { return mValues.mimeTruncation; }
    void setMimeTruncation(MimeTruncationType truncation) { mValues.mimeTruncation = truncation; }
    QList<QSharedPointer<AirSyncBasePreference>> bodyPreference() const { return mValues.bodyPreference; }
    QList<QSharedPointer<AirSyncBasePreference>> bodyPartPreference() const
    {
        return mValues.bodyPartPreference;
    }

    void setBodyPreference(const QList<QSharedPointer<AirSyncBasePreference>> &preferences);
    void appendBodyPreference(const QSharedPointer<AirSyncBasePreference> &preference);
    void setBodyPartPreference(const QList<QSharedPointer<AirSyncBasePreference>> &preferences);
    void appendBodyPartPreference(const QSharedPointer<AirSyncBasePreference> &preference);

    using AsProtocolItem::encode;
    virtual void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

private:
    struct Values
    {
        bool rightsManagmentSupport = false;
        ServerClientConflictType conflicts = ServerReplacesClient;
        uint maxItems = 0;
        QString itemClass;
        FilterType filter = FilterUnset;
        MimeSupportType mimeSupport = MimeSupportUnset;
        MimeTruncationType mimeTruncation = MimeTruncationUnset;
        QList<QSharedPointer<AirSyncBasePreference>> bodyPreference;
        QList<QSharedPointer<AirSyncBasePreference>> bodyPartPreference;
    };
    Values mValues;
};
