#include "choices.h"
#include "hostapdtemplate.h"
#include "require.h"

#include <QByteArrayList>

namespace
{
bool isReplaced(const QByteArray &line)
{
    static const QByteArrayList keys = {"channel", "ssid", "wpa_passphrase", "own_ip_addr"};
    const QByteArrayList pieces = line.split('=');
    return pieces.size() == 2 && keys.contains(pieces.first());
}

QString text(Choices &choices)
{
    return QString::fromStdString(choices.text());
}
} // namespace

/** Templates with any content, and any parameters from a client. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Choices choices(data, size);
    const AccessPointParameters parameters = {static_cast<quint16>(choices.number()), text(choices),
                                              text(choices), text(choices)};
    require(hostapdTemplateName(parameters.ssid).endsWith(QLatin1String(".conf")),
            "every security has its template");

    if (!fitsHostapdLines(parameters))
        return 0;

    const QByteArray original = QByteArray::fromStdString(choices.rest());
    const QByteArray made = hostapdConfiguration(original, parameters);
    const QByteArrayList before = original.split('\n');
    const QByteArrayList after = made.split('\n');
    require(before.size() == after.size(), "no line is added and none is lost");
    for (int line = 0; line < before.size(); ++line) {
        if (isReplaced(before[line]))
            require(after[line].startsWith(before[line].split('=').first() + '='),
                    "a replaced line keeps its key");
        else
            require(after[line] == before[line], "every other line is kept");
    }
    if (!made.contains("=="))
        require(hostapdConfiguration(made, parameters).count('\n') == made.count('\n'),
                "a configuration can serve as a template");
    return 0;
}
