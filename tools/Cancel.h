// SPDX-License-Identifier: MIT
#pragma once

/// Makes SIGTERM, SIGINT and SIGHUP cancel the job instead of ending the process. A SIGINT or SIGHUP that the
/// caller ignores remains ignored. Call it before anything else.
void handleCancelSignals();

/// Whether such a signal has arrived.
bool isCancelled();

/// A descriptor that is readable if such a signal has arrived since the last call of isCancelled.
int cancelDescriptor();
