// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/**
 * A plan for one run of a program under the fault shim: it dies before its n-th durable step, or the i-th
 * step of a statement of its database fails.
 *
 *     FaultShim plain(folder, "fennel-eas");          // a run that only records
 *     daemon.setProcessEnvironment(plain.environment(base));
 *     ...
 *     for (int n = 1; n <= plain.steps().size(); ++n) {
 *         FaultShim shim(folder, "fennel-eas");
 *         shim.killAtStep(n);
 *         ...                                         // run, restart without the shim, compare
 *     }
 *
 * A durable step is a write, sync, truncation, removal or renaming of a database file or its journal; other
 * files join through setFiles(). One object a run: its lists stand in files of their own.
 */
class FaultShim
{
public:
    enum class StatementError { IoError, Full };

    /** Lists go to files in the folder. Programs of another name run as usual, children among them. */
    FaultShim(const QString &folder, const QString &program);

    /** Wildcard patterns of file names, in place of databases and their journals. */
    void setFiles(const QStringList &patterns);
    /** Some of "write", "sync", "truncate", "remove", "rename", in place of all. */
    void setKinds(const QStringList &kinds);
    /** Counted from 1; the step itself does not happen. */
    void killAtStep(int number);

    /** The database whose statements are listed and can fail; the engine's own by default. */
    void setDatabase(const QString &pattern);
    /** Counted from 1, over all calls of sqlite3_step; a statement that reads rows has one for each. */
    void failStatement(int number, StatementError error);

    QProcessEnvironment environment(
        const QProcessEnvironment &base = QProcessEnvironment::systemEnvironment()) const;

    /** The durable steps so far, as "kind file"; the one that killed the process is the last. */
    QStringList steps() const;
    /** The texts of the statements so far. */
    QStringList statements() const;

private:
    QProcessEnvironment mVariables;
};
