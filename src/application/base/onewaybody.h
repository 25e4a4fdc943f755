// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QIODevice>

/**
 * The body of a request that must not go out twice.
 *
 * The network layer sends a request again by itself when the connection ends before an answer has begun,
 * although the server may have carried it out; it asks the body to begin anew for that, which this one
 * refuses. Main thread only.
 */
class OneWayBody : public QIODevice
{
    Q_OBJECT

public:
    explicit OneWayBody(const QByteArray &bytes, QObject *parent = nullptr);

    /** The server has taken nothing and asked for credentials: the body may begin anew, once. */
    void allowAnotherStart() { mMayStart = true; }

    qint64 size() const override { return mBytes.size(); }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char *data, qint64 maximum) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    const QByteArray mBytes;
    qint64 mRead = 0;
    bool mMayStart = true;
};
