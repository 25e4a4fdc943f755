// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

namespace mKCal {

/**
 * The file beside a database by which processes tell each other of commits: it is truncated after each, and
 * everybody watches it, the one who truncates it included.
 */
class ChangeMarker : public QObject
{
    Q_OBJECT

public:
    explicit ChangeMarker(const QString &path, QObject *parent = nullptr);
    QString path() const { return mPath; }
    void touch();

Q_SIGNALS:
    void changed();

private:
    void watch();
    void onFileChanged();

    const QString mPath;
    QFileSystemWatcher mWatcher;
};

} // namespace mKCal
