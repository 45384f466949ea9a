// SPDX-License-Identifier: MIT
// An empty window of Qt Widgets: the reference of the start time.
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
