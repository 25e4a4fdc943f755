// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/passwordinput.h"

#include "client/interruptguard.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace {

using Outcome = PasswordInput::Outcome;

/** Switches the echo of a terminal off for as long as it lives. */
class SilentTerminal
{
public:
    explicit SilentTerminal(int descriptor)
        : mDescriptor(descriptor)
    {
        tcgetattr(mDescriptor, &mBefore);
        termios silent = mBefore;
        silent.c_lflag &= ~tcflag_t(ECHO);
        // A stopped program would leave the terminal without echo.
        silent.c_cc[VSUSP] = _POSIX_VDISABLE;
        tcsetattr(mDescriptor, TCSAFLUSH, &silent);
    }
    ~SilentTerminal() { tcsetattr(mDescriptor, TCSAFLUSH, &mBefore); }
    Q_DISABLE_COPY(SilentTerminal)

private:
    int mDescriptor;
    termios mBefore {};
};

Outcome fail(QString *error, const QString &reason)
{
    *error = reason;
    return Outcome::Failed;
}

/** Waits until there is something to read; false if an interrupt came first. */
bool waitForInput(int descriptor, const InterruptGuard &interrupts)
{
    std::array<pollfd, 2> descriptors { pollfd { descriptor, POLLIN, 0 },
        pollfd { interrupts.descriptor(), POLLIN, 0 } };
    while (::poll(descriptors.data(), descriptors.size(), -1) < 0 && errno == EINTR) {}
    return descriptors[1].revents == 0;
}

Outcome readLine(int descriptor, const InterruptGuard &interrupts, QString *password, QString *error)
{
    QByteArray line;
    char byte = 0;
    while (true) {
        if (!waitForInput(descriptor, interrupts))
            return Outcome::Interrupted;
        const ssize_t count = ::read(descriptor, &byte, 1);
        if (count < 0)
            return fail(error,
                QStringLiteral("cannot read the password from descriptor %1: %2")
                    .arg(descriptor)
                    .arg(QString::fromLocal8Bit(std::strerror(errno))));
        if (count == 0 || byte == '\n')
            break;
        line.append(byte);
    }
    *password = QString::fromUtf8(line);
    return password->isEmpty() ? fail(error, QStringLiteral("the password is empty")) : Outcome::Read;
}

Outcome readSilently(int terminal, const QString &prompt, QString *password, QString *error)
{
    // Before the echo goes, so that no interrupt can leave the terminal without it.
    const InterruptGuard interrupts;
    const SilentTerminal silent(terminal);
    const QByteArray text = prompt.toLocal8Bit();
    [[maybe_unused]] ssize_t written = ::write(terminal, text.constData(), std::size_t(text.size()));
    const Outcome outcome = readLine(terminal, interrupts, password, error);
    written = ::write(terminal, "\n", 1);
    return outcome;
}

} // namespace

PasswordInput::Outcome PasswordInput::fromDescriptor(int descriptor, QString *password, QString *error)
{
    return isatty(descriptor) ? readSilently(descriptor, QString(), password, error)
                              : readLine(descriptor, InterruptGuard(), password, error);
}

PasswordInput::Outcome PasswordInput::fromCommand(const QString &command, QString *password, QString *error)
{
    const InterruptGuard interrupts;
    std::FILE *output = ::popen(command.toLocal8Bit().constData(), "re");
    if (!output)
        return fail(error,
            QStringLiteral("cannot run the password command: %1")
                .arg(QString::fromLocal8Bit(std::strerror(errno))));
    const Outcome outcome = readLine(::fileno(output), interrupts, password, error);
    // A program that cannot write its other lines would end with an error.
    std::array<char, 4096> rest {};
    while (outcome != Outcome::Interrupted && ::read(::fileno(output), rest.data(), rest.size()) > 0) {}
    const int status = ::pclose(output);
    if (outcome == Outcome::Interrupted || status == 0)
        return outcome;
    password->clear();
    return fail(error,
        WIFEXITED(status)
            ? QStringLiteral("the password command ended with status %1").arg(WEXITSTATUS(status))
            : QStringLiteral("the password command was killed"));
}

PasswordInput::Outcome PasswordInput::fromTerminal(const QString &prompt, QString *password, QString *error)
{
    QFile terminal(QStringLiteral("/dev/tty"));
    if (!terminal.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return fail(error,
            QStringLiteral("no terminal to ask for the password; give it with --password-fd or "
                           "--password-command"));
    return readSilently(terminal.handle(), prompt, password, error);
}
