// The steps of the tour that send a patient through the record-sharing service to another practice. Each works where
// the one before has ended; the service is the one that tools/with-service runs.
#pragma once

#include "host/tour/tour.h"

void tourPlayExchangeUnavailable(tourCGuide& guide);
/// Sets the transfer program up and sends a patient of the open practice.
void tourPlayExchangeSend(tourCGuide& guide);
/// Opens an empty practice of another user of the service, and takes the patient there.
void tourPlayExchangeReceive(tourCGuide& guide);
/// The sender's record changes and comes a second time.
void tourPlayExchangeAgain(tourCGuide& guide);
