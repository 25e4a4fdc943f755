// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>
#include <QStringList>

/**
 * Tests that need a process of their own, as a process keeps the bus that it saw first: the same executable
 * runs the same test with a mark in its environment.
 *
 *     if (OwnProcess::bears(OwnProcess::WithoutBus))
 *         runWithoutBus();
 *     else
 *         QCOMPARE(OwnProcess::run(OwnProcess::WithoutBus, { "NameTest" }), QString());
 */
namespace OwnProcess {

struct Mark
{
    const char *variable;
    const char *value;
};

/** No session bus at all. */
constexpr Mark WithoutBus { "DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus" };
/** A bus on which no service can be started; the test takes care of that. */
constexpr Mark WithoutServices { "FENNEL_TEST_BUS_WITHOUT_SERVICES", "1" };

bool bears(const Mark &mark);

/** Runs a test class, or one function of it; empty if it succeeds, else what it printed. */
QString run(const Mark &mark, const QStringList &test);

} // namespace OwnProcess
