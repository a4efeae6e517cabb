// The smallest program that uses QString and QMap once: what a process linked with Qt pays
// before it has done anything.

#include <QMap>
#include <QString>

int main(int argc, char **argv)
{
    QMap<QString, QString> macros;
    macros.insert(QString::fromLatin1(argv[0]), QString::number(argc));
    return macros.contains(QString::fromLatin1(argv[0])) ? 0 : 1;
}
