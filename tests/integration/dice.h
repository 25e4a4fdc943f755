// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QStringList>

#include <random>

/** Random choices that a seed repeats on every machine. */
class Dice
{
public:
    explicit Dice(quint32 seed)
        : mEngine(seed)
    {
    }

    /** From 0 to one less than @p count. The distributions of the standard library differ between systems. */
    int below(int count) { return int(mEngine() % quint32(count)); }
    bool oneIn(int count) { return below(count) == 0; }
    QString pick(const QStringList &list) { return list.isEmpty() ? QString() : list.at(below(list.size())); }

private:
    std::mt19937 mEngine;
};
