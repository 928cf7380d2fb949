#pragma once

// Enters all visualizations in the machine's settings, a key each below "Plugins\Display", or
// removes them there and in the user's. What can't be written is passed over.
void RegisterVisualizations(bool enter);
