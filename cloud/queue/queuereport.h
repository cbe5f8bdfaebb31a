// What the report behind an upload says of a patient.
#pragma once

namespace cloud
{
/// The id of the text for a queue's result: a template that takes the patient ID and the other computer's
/// name. 0 for a patient that was queued, and for what stopped the whole upload. `elsewhere`: another
/// computer has queued the patient.
unsigned QueueReportText(int result, bool elsewhere);
} // namespace cloud
