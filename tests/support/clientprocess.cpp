// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/clientprocess.h"

#include "support/buildpaths.h"
#include "support/waiting.h"

#include <QSocketNotifier>

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int Patience = 180000;

/** Dies with the test, and has the terminal, if there is one, as its own. */
class TerminalProcess : public QProcess
{
public:
    explicit TerminalProcess(const QByteArray &terminal)
        : mTerminal(terminal)
    {
    }

protected:
    void setupChildProcess() override
    {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (mTerminal.isEmpty())
            return;
        setsid();
        const int slave = ::open(mTerminal.constData(), O_RDWR);
        ioctl(slave, TIOCSCTTY, 0);
        for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor)
            dup2(slave, descriptor);
    }

private:
    QByteArray mTerminal;
};

} // namespace

ClientProcess::ClientProcess(Place place)
{
    QByteArray slave;
    if (place == OnTerminal) {
        mTerminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
        if (mTerminal >= 0 && grantpt(mTerminal) == 0 && unlockpt(mTerminal) == 0)
            slave = ptsname(mTerminal);
    }
    mProcess.reset(new TerminalProcess(slave));
    if (place == OnTerminal)
        setColumns(100);
}

ClientProcess::~ClientProcess()
{
    mProcess->kill();
    mProcess->waitForFinished();
    if (mTerminal >= 0)
        ::close(mTerminal);
}

void ClientProcess::setColumns(unsigned short columns)
{
    const winsize size { 24, columns, 0, 0 };
    ioctl(mTerminal, TIOCSWINSZ, &size);
}

void ClientProcess::setVariable(const QString &name, const QString &value)
{
    QProcessEnvironment environment = mProcess->processEnvironment();
    if (environment.isEmpty())
        environment = QProcessEnvironment::systemEnvironment();
    environment.insert(name, value);
    mProcess->setProcessEnvironment(environment);
}

void ClientProcess::start(const QStringList &arguments, const QByteArray &input)
{
    mOutput.clear();
    mErrors.clear();
    mProcess->start(BuildPaths::binary(QStringLiteral("bin/fennel-easctl")), arguments);
    mProcess->waitForStarted();
    if (!input.isEmpty())
        mProcess->write(input);
    if (mTerminal < 0)
        mProcess->closeWriteChannel();
}

void ClientProcess::read()
{
    mOutput += mProcess->readAllStandardOutput();
    mErrors += mProcess->readAllStandardError();
    char bytes[4096];
    ssize_t count = 0;
    while (mTerminal >= 0 && (count = ::read(mTerminal, bytes, sizeof bytes)) > 0)
        mOutput.append(bytes, int(count));
}

int ClientProcess::waitForEnd()
{
    const bool hasEnded = Waiting::until(
        [this] {
            read();
            return !isRunning();
        },
        Patience);
    read();
    return hasEnded && mProcess->exitStatus() == QProcess::NormalExit ? mProcess->exitCode() : -1;
}

bool ClientProcess::waitForOutput(const QByteArray &text)
{
    QScopedPointer<QSocketNotifier> readable;
    if (mTerminal >= 0)
        readable.reset(new QSocketNotifier(mTerminal, QSocketNotifier::Read));
    return Waiting::until(
        [&] {
            read();
            return mOutput.contains(text) || mErrors.contains(text);
        },
        Patience);
}

void ClientProcess::type(const QByteArray &keys)
{
    if (::write(mTerminal, keys.constData(), std::size_t(keys.size())) != keys.size())
        qWarning("the terminal does not take what is typed");
}

bool ClientProcess::echoes() const
{
    termios settings {};
    return mTerminal < 0 || (tcgetattr(mTerminal, &settings) == 0 && (settings.c_lflag & ECHO) != 0);
}

void ClientProcess::signal(int number) const
{
    ::kill(pid_t(mProcess->processId()), number);
}
