#ifndef TESTS_RELIABILITY_PLANT_OF_H
#define TESTS_RELIABILITY_PLANT_OF_H

#include <QString>

/// A project of \a items moving values of all kinds ("item-0" and so on, whose names are their
/// ids), for the account of the example project. False when the file cannot be written.
bool writePlantOf(int items, const QString& file);

/// The driver's name of the type of the item at \a index.
const char* plantTypeOf(int index);

/// Items of this type at these places can be written.
bool isPlantItemWritable(int index);

#endif
