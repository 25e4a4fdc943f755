// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QDebug>
#include <QList>
#include <QPair>

/** What logging needs beside its categories: levels from the settings file, and dumps. Main thread only. */
class DebugTools
{
public:
    /** Reads the levels from the settings file and applies them; may be called again at any time. */
    static void init();

    /** Sixteen bytes a line, in hexadecimal. */
    static void dumpHexData(const QByteArray &data);

    static void dumpWbxmlData(const QDebug &debug, const QByteArray &data);

    /** HTTP headers as one text without what must stay secret: the values of credentials, cookies and keys.
     */
    static QString headersForLog(const QList<QPair<QByteArray, QByteArray>> &headers);
};
