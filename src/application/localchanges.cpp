// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/localchanges.h"

#include <utility>

namespace {
constexpr int Quiet = 3000;
} // namespace

LocalChanges::LocalChanges(QObject *parent)
    : QObject(parent)
    , mDeadline(Clock::Timer::LocalChanges)
{
    connect(&mDeadline, &Deadline::expired, this, &LocalChanges::due);
}

void LocalChanges::add(const QStringList &folders)
{
    for (const QString &folder : folders) {
        if (!mFolders.contains(folder))
            mFolders.append(folder);
    }
}

void LocalChanges::startWaiting()
{
    mDeadline.start(Quiet);
}

QStringList LocalChanges::take()
{
    mDeadline.stop();
    return std::exchange(mFolders, {});
}

void LocalChanges::clear()
{
    take();
}
