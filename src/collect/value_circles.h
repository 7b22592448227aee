#pragma once

// Once all declarations are known: ends the run when Globals, Consts or the Fields of a class take their initial
// values or sizes from each other in a circle, or a Field takes its from one below it.
void CheckValueCircles();
