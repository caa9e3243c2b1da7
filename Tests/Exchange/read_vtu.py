"""Prints what VTK's own reader finds in an unstructured grid: points, cells, and every array by its name."""

import sys

from vtkmodules.vtkIOXML import vtkXMLUnstructuredGridReader

reader = vtkXMLUnstructuredGridReader()
reader.SetFileName(sys.argv[1])
reader.Update()
grid = reader.GetOutput()
for i in range(grid.GetNumberOfPoints()):
    print("point", *map(repr, grid.GetPoint(i)))
for i in range(grid.GetNumberOfCells()):
    cell = grid.GetCell(i)
    print("cell", cell.GetClassName(), *(cell.GetPointId(k) for k in range(cell.GetNumberOfPoints())))
for data in (grid.GetPointData(), grid.GetCellData()):
    for i in range(data.GetNumberOfArrays()):
        array = data.GetArray(i)
        print(array.GetName(), *(repr(array.GetTuple(k)) for k in range(array.GetNumberOfTuples())))
