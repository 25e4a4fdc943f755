// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

/** Body of an item as the server sends it or as it goes out, whole or truncated. A plain value. */
class EasBodyContainer
{
    Q_GADGET

public:
    enum BodyType : int {
        UnspecifiedBodyType = -1,
        PlainTextBodyType = 1,
        HTMLBodyType = 2,
        RTFBodyType = 3,
        MIMEBodyType = 4
    };
    Q_ENUM(BodyType)

    BodyType type() const { return mType; }
    void setType(BodyType type) { mType = type; }
    int estimatedDataSize() const { return mEstimatedDataSize; }
    void setEstimatedDataSize(int estimatedDataSize) { mEstimatedDataSize = estimatedDataSize; }
    bool truncated() const { return mTruncated; }
    void setTruncated(bool truncated) { mTruncated = truncated; }
    QString data() const { return mData; }
    void setData(const QString &data) { mData = data; }
    QByteArray mime() const { return mMime; }
    void setMime(const QByteArray &mime) { mMime = mime; }
    int part() const { return mPart; }
    void setPart(int part) { mPart = part; }
    QString preview() const { return mPreview; }
    void setPreview(const QString &preview) { mPreview = preview; }
    bool smartMimeData() const { return mSmartMimeData; }
    void setSmartMimeData(bool smartMimeData) { mSmartMimeData = smartMimeData; }

    /** Whether nothing but possibly a preview has been set. */
    bool isEmpty() const;

    void clear() { *this = EasBodyContainer(); }

private:
    BodyType mType = UnspecifiedBodyType;
    int mEstimatedDataSize = 0;
    bool mTruncated = false;
    QString mData;
    QByteArray mMime;
    int mPart = 0;
    QString mPreview;
    bool mSmartMimeData = false;
};
