// Elements that hold each other by value.
#pragma once

// Ends the run when some of them do so in a circle.
void CheckElementCycles();
