// SPDX-License-Identifier: MIT
#pragma once

namespace tarnwell
{

/// Makes the three standard descriptors safe to rely on; call it first in main. Closed ones are opened on the
/// null device, so that no pipe or file of the program takes their numbers and ends up in a tool's hands. A
/// reader that goes away is an error of the write, not a signal: the tools inherit that, and so an encoder
/// survives the end of the program that listened to it. Children stay until they are reaped, whatever
/// the program was started with: until then nobody else gets their numbers.
void prepareStandardStreams();

} // namespace tarnwell
