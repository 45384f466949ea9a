// SPDX-License-Identifier: MIT
#pragma once

/// From now on SIGTERM, SIGINT and SIGHUP cancel the work instead of ending the process. A SIGINT or SIGHUP
/// that the caller has set to be ignored stays ignored. Call it first.
void handleCancelSignals();

/// Whether such a signal has arrived.
bool isCancelled();

/// Is readable when such a signal has arrived and isCancelled has not been called since.
int cancelDescriptor();
