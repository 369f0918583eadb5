// The file manager, with what GNUstep leaves out of it.
#pragma once

#include_next <Foundation/NSFileManager.h>

@interface NSFileManager (TarvanePlatform)

/// NO, with the reason in *error if error is not null, when there is no item at the path or an
/// attribute cannot be set. HFS creator and type codes are accepted and have nowhere to be stored.
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error;

@end
