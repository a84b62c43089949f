#include "command_labels.h"

#include <QRegularExpression>

QString CommandLabel(const RegisteredCommand& command)
{
    QString label = QString::fromStdString(command.name);
    if (label.startsWith("Quilp") && label.size() > 5) {
        label.remove(0, 5);
    }
    static const QRegularExpression kWordBegin("(?<=[a-z])(?=[A-Z])");
    label.replace(kWordBegin, " ");
    return label.left(1) + label.mid(1).toLower();
}
