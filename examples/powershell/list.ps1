# Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document.
param([string] $Form = 'lines', [string] $Library = $(Join-Path $PSScriptRoot '..\..\bin\driverinventory.dll'))

$ErrorActionPreference = 'Stop'
Import-Module (Join-Path $PSScriptRoot 'DriverInventory.psm1') -Force
[Console]::OutputEncoding = New-Object Text.UTF8Encoding $false

if ($Form -eq 'json') {
    [Console]::Out.Write((Get-DriverInventoryJson $Library))
    return
}
foreach ($record in Get-DriverInventory $Library) {
    $texts = foreach ($member in 'kind', 'name', 'version') {
        $property = $record.PSObject.Properties[$member]
        if ($property) { $property.Value } else { '' }
    }
    [Console]::Out.Write(($texts -join "`t") + "`n")
}
