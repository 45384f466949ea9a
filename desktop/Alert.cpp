// SPDX-License-Identifier: MIT
#include "desktop/Alert.h"

#include "desktop/AlertDialog.h"
#include "desktop/SheetQueue.h"

namespace tarnwell
{

void Alert::beginSheetModal(QWidget& window, SheetQueue& sheets, Handler handler) const
{
    auto* dialog = new AlertDialog(window, *this);
    sheets.begin(dialog, [dialog, answer = std::move(handler)](int response) {
        if (answer)
            answer(response);
        // After the handler: it may run an event loop inside the click that the dialog is still handling.
        dialog->deleteLater();
    });
}

} // namespace tarnwell
