// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QLoggingCategory>

#include <cstddef>
#include <cstdint>

/** What the fuzzers share. */
namespace FuzzSupport {

/** Log lines are made and thrown away: what a server sends goes through the printers as well. */
inline void keepQuiet()
{
    static const bool done = [] {
        QLoggingCategory::setFilterRules(QStringLiteral("*=true"));
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        return true;
    }();
    Q_UNUSED(done)
}

/** A copy on the heap, so that the sanitizer sees a read past its end. */
inline QByteArray bytes(const uint8_t *data, std::size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size));
}

} // namespace FuzzSupport
