// Lists items as they are scanned, for a count of what is in stock.
#ifndef STOCKROOM_STOCKROOM_H_
#define STOCKROOM_STOCKROOM_H_

namespace stockroom {

// Runs until no key was pressed for a while. 0: nothing went wrong; else messages.txt says what
// did.
int Run();

}  // namespace stockroom

#endif  // STOCKROOM_STOCKROOM_H_
