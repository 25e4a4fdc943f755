// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QObject>
#include <QProcess>
#include <QStringList>

/**
 * The command line client as a process of its own, without a terminal or on one of its own. Events of the
 * test process go on while it runs, so that a daemon in the test process can answer. Killed with the object.
 */
class ClientProcess : public QObject
{
    Q_OBJECT

public:
    enum Place { WithoutTerminal, OnTerminal };

    explicit ClientProcess(Place place = WithoutTerminal);
    ~ClientProcess() override;

    /** Where the standard output goes, in place of output(). */
    void setOutputFile(const QString &path) { mProcess->setStandardOutputFile(path); }

    /** Its standard input, which is empty otherwise. */
    void setInputFile(const QString &path) { mProcess->setStandardInputFile(path); }

    /** How wide the terminal is; wider than most without. */
    void setColumns(unsigned short columns);

    void setVariable(const QString &name, const QString &value);
    void setEnvironment(const QProcessEnvironment &environment)
    {
        mProcess->setProcessEnvironment(environment);
    }

    /** The text is its standard input, unless that is a file or a terminal. */
    void start(const QStringList &arguments, const QByteArray &input = QByteArray());
    /** The exit status; -1 if it died of a signal or did not end in time. */
    int waitForEnd();
    int run(const QStringList &arguments, const QByteArray &input = QByteArray())
    {
        start(arguments, input);
        return waitForEnd();
    }
    /** What a command prints with --json; null unless it succeeded. */
    QJsonDocument json(const QStringList &arguments)
    {
        return run(QStringList(QStringLiteral("--json")) + arguments) == 0 ? json() : QJsonDocument();
    }
    bool isRunning() const { return mProcess->state() != QProcess::NotRunning; }

    /** What it printed; on a terminal all of it stands in output(). */
    QByteArray output() const { return mOutput; }
    QByteArray errors() const { return mErrors; }
    QJsonDocument json() const { return QJsonDocument::fromJson(mOutput); }
    /** False if it does not print the text in time. */
    bool waitForOutput(const QByteArray &text);

    void type(const QByteArray &keys);
    /** As the terminal has it; true without one. */
    bool echoes() const;
    void signal(int number) const;

private:
    void read();

    QScopedPointer<QProcess> mProcess;
    int mTerminal = -1;
    QByteArray mOutput;
    QByteArray mErrors;
};
