// model/sine.h - sine and cosine with the same bits on every processor
#pragma once

// The floats nearest to the sine and the cosine of an angle in radians. C libraries differ in the last bit for one
// angle in a hundred, and with it the rotation of a model and its picture. Not finite: NaN.
float sineOf(float angle);
float cosineOf(float angle);
