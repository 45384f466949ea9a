// SPDX-License-Identifier: MIT
#include "tests/support/ProgramCopy.h"

#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <QImage>

#include <filesystem>

namespace tarnwell::test
{

ProgramCopy::ProgramCopy(const std::string& videoBytes)
{
    std::filesystem::copy_file(TARNWELL_BUILD_FOLDER "/bin/tarnwell", program());
    QImage image(48, 32, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.save(QString::fromStdString(still()));
    writeFile(video(), videoBytes);
}

} // namespace tarnwell::test
