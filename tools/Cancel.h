// SPDX-License-Identifier: MIT
#pragma once

/// Makes SIGTERM, SIGINT and SIGHUP cancel the job instead of ending the process. A SIGINT or SIGHUP that the
/// caller ignores remains ignored. Call it before anything else.
void handleCancelSignals();

/// Whether such a signal has arrived.
bool isCancelled();

/// Ends the time in which the job can be cancelled: call it before the first step that cannot be undone, and
/// isCancelled no more afterwards. False if the job has been cancelled.
///
/// The caller of the tool can pass a token, an eventfd in semaphore mode with the value 1, whose descriptor
/// is in the environment variable TARNWELL_COMMIT_TOKEN. It counts a cancel only if it could read the token
/// before. This function reads it, too: only one of both succeeds.
bool commit();

/// A descriptor that is readable if such a signal has arrived since the last call of isCancelled.
int cancelDescriptor();
