// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/passwordinput.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {

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
        tcsetattr(mDescriptor, TCSAFLUSH, &silent);
    }
    ~SilentTerminal() { tcsetattr(mDescriptor, TCSAFLUSH, &mBefore); }
    Q_DISABLE_COPY(SilentTerminal)

private:
    int mDescriptor;
    termios mBefore {};
};

} // namespace

bool PasswordInput::fromDescriptor(int descriptor, QString *password, QString *error)
{
    QByteArray line;
    char byte = 0;
    ssize_t count = 0;
    while ((count = ::read(descriptor, &byte, 1)) == 1 && byte != '\n')
        line.append(byte);
    if (count < 0) {
        *error = QStringLiteral("cannot read the password from descriptor %1: %2")
                     .arg(descriptor)
                     .arg(QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    *password = QString::fromUtf8(line);
    return true;
}

bool PasswordInput::fromTerminal(const QString &prompt, QString *password, QString *error)
{
    QFile terminal(QStringLiteral("/dev/tty"));
    if (!terminal.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
        *error = QStringLiteral("no terminal to ask for the password; give it with --password-fd");
        return false;
    }
    terminal.write(prompt.toLocal8Bit());
    const SilentTerminal silent(terminal.handle());
    const bool read = fromDescriptor(terminal.handle(), password, error);
    terminal.write("\n");
    return read;
}
