// Has the Objective-C++ form of the header made.
