// SPDX-License-Identifier: MIT
// The least that a window of Qt's widgets takes: nothing is in it. What Tarnwell's start is compared with.
#include <QApplication>
#include <QWidget>

namespace
{

constexpr QSize sizeOfTarnwell(900, 640);

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(sizeOfTarnwell);
    window.show();
    return QApplication::exec();
}
