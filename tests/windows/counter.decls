; what counter.dll offers
.lib "counter.dll"
Add%(a%, b%):"add"
Half#(x#):"half"
Total:Long(a:Byte, b:Short, c:Long):"total"
Greet$(name$):"greet"
Nothing$():"nothing"
length%(text$)
OpenCounter:void*(start%):"open_counter"
NextNumber%(counter*):"next_number"
CloseCounter(counter*):"close_counter"
Same:TPlayer(small:TPlayer):"same"
Sleep%(n%):"fake_sleep"
Missing%(n%)
  .lib "not there.dll"
AbsentText$()
.lib "kernel32.dll"
ProcessId%():"GetCurrentProcessId"
