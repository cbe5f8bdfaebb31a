#pragma once

/// What became of a record that was to be queued; the numbers are known outside.
enum velQueueResult
{
    velQueued = 0,
    velQueueLoadError = 100,
    velQueueExists = 103, ///< the patient has a task that is not finished
    velQueueImagesMissing = 105,
    velQueueNoProgram = 106,
    velQueueNoImages = 107,
    velQueueNoXml = 108,
    velQueueNoTable = 110,
    velQueueRefused = 121 ///< the user has been told why
};
