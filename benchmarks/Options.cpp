#include "Options.h"

#include "Measure.h"

#include <algorithm>
#include <cstdio>
#include <exception>

namespace {

constexpr char fieldsOption[] = "fields";

} // namespace

Options::Options()
{
    parser.addHelpOption();
    parser.addOption({QLatin1String(fieldsOption), QStringLiteral("Rows as fields between tabs.")});
}

void Options::number(const char* name, const char* text, int& value)
{
    const QString option = QLatin1String(name);
    parser.addOption({option, QLatin1String(text), QStringLiteral("number"), QString::number(value)});
    numbers.append({option, &value});
}

void Options::rows(const char* names, QStringList& chosen)
{
    parser.addPositionalArgument(QStringLiteral("rows"), QStringLiteral("Any of: ") + QLatin1String(names));
    chosenRows = &chosen;
}

void Options::read(const QCoreApplication& application)
{
    parser.process(application);
    chooseRowForm(parser.isSet(QLatin1String(fieldsOption)) ? RowForm::Fields : RowForm::Table);
    for (const auto& [name, value] : std::as_const(numbers))
        *value = std::max(1, parser.value(name).toInt());
    if (chosenRows)
        *chosenRows = parser.positionalArguments();
}

int runToEnd(const std::function<void()>& benchmark)
{
    try {
        benchmark();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return 0;
}
