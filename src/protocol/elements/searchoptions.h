// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"

#include <QList>
#include <QSharedPointer>
#include <QString>

class AirSyncBasePreference;
class WbxmlEncoder;

/** How a Search is answered: which of the matches, and what of each. A plain value; copies share the
 * preferences, which nobody changes once they are set. */
class SearchOptions
{
public:
    enum MimeSupportType : int {
        MimeSupportUnset = -1,
        MimeNever = 0,
        MimeForSecureMessages = 1,
        MimeForAllMessages = 2
    };
    using Preferences = QList<QSharedPointer<AirSyncBasePreference>>;

    MimeSupportType mimeSupport() const { return mMimeSupport; }
    void setMimeSupport(MimeSupportType support) { mMimeSupport = support; }
    Preferences bodyPreference() const { return mBodyPreference; }
    void appendBodyPreference(const QSharedPointer<AirSyncBasePreference> &preference);
    Preferences bodyPartPreference() const { return mBodyPartPreference; }
    void appendBodyPartPreference(const QSharedPointer<AirSyncBasePreference> &preference);
    bool rightsManagementSupport() const { return mRightsManagementSupport; }
    void setRightsManagementSupport(bool support) { mRightsManagementSupport = support; }
    /** The first and the last match that is wanted, counted from 0; -1 leaves both to the server. */
    int lowIndexRange() const { return mLowIndexRange; }
    void setLowIndexRange(int index) { mLowIndexRange = index; }
    int highIndexRange() const { return mHighIndexRange; }
    void setHighIndexRange(int index) { mHighIndexRange = index; }
    QString userName() const { return mUserName; }
    void setUserName(const QString &name) { mUserName = name; }
    QString password() const { return mPassword; }
    void setPassword(const QString &password) { mPassword = password; }
    /** Whether folders below those of the query are searched, too. */
    bool deepTraversal() const { return mDeepTraversal; }
    void setDeepTraversal(bool isDeep) { mDeepTraversal = isDeep; }
    /** Whether the server searches anew in place of continuing an earlier search. */
    bool rebuildResults() const { return mRebuildResults; }
    void setRebuildResults(bool rebuild) { mRebuildResults = rebuild; }
    /** Bytes of a picture, and number of pictures; -1 asks for none. */
    int maxSizePicture() const { return mMaxSizePicture; }
    void setMaxSizePicture(int bytes) { mMaxSizePicture = bytes; }
    int maxPicture() const { return mMaxPicture; }
    void setMaxPicture(int count) { mMaxPicture = count; }

    void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const;

    /** "low-high"; empty for a range that asks for nothing. */
    static QString rangeText(int low, int high);

private:
    void encodePicture(WbxmlEncoder &encoder) const;

    MimeSupportType mMimeSupport = MimeSupportUnset;
    Preferences mBodyPreference;
    Preferences mBodyPartPreference;
    bool mRightsManagementSupport = false;
    int mLowIndexRange = -1;
    int mHighIndexRange = -1;
    QString mUserName;
    QString mPassword;
    bool mDeepTraversal = false;
    bool mRebuildResults = false;
    int mMaxSizePicture = -1;
    int mMaxPicture = -1;
};
