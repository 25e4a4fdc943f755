// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/policycommands.h"

#include "client/commandcontext.h"
#include "client/policyanswer.h"
#include "client/requestrun.h"
#include "common/easdbusinterfaceproxy.h"

#include <QCommandLineParser>

int PolicyCommands::show(CommandContext &context)
{
    QCommandLineParser parser;
    if (!context.parse(parser, 0, 1))
        return context.exitStatus();
    context.nameAccount(parser.positionalArguments().value(0));
    EasAccountId account = 0;
    const int selected = context.selectAccount(&account);
    if (selected != ExitSuccess)
        return selected;
    const int enabled = context.requireEnabled({ account });
    if (enabled != ExitSuccess)
        return enabled;

    RequestRun run(context);
    DaemonRequest &request = run.add(
        account, [account](EasDBusInterfaceProxy &daemon) { return daemon.provisionPolicy(account); });
    const PolicyAnswer answer(request);
    const int result = run.exec();
    answer.print(context.output());
    return result;
}
