# The driver inventory of a Windows machine, through driverinventory.dll: Windows PowerShell 5.1 and PowerShell 7, 64-bit.
#
#   Import-Module .\DriverInventory.psm1
#   Get-DriverInventory | Where-Object kind -eq service | Select-Object name, version
Set-StrictMode -Version Latest

Add-Type -Namespace Orvane -Name DriverInventoryNative -MemberDefinition @'
[DllImport("kernel32", CharSet = CharSet.Unicode, SetLastError = true)]
public static extern IntPtr LoadLibraryW(string path);

[DllImport("driverinventory", CallingConvention = CallingConvention.Cdecl)]
public static extern int driverinventory_collect(IntPtr options, out IntPtr inventory);

[DllImport("driverinventory", CallingConvention = CallingConvention.Cdecl)]
public static extern int driverinventory_release(IntPtr inventory);

[DllImport("driverinventory", CallingConvention = CallingConvention.Cdecl)]
public static extern int driverinventory_document(IntPtr inventory, int document, out IntPtr text, out UIntPtr length);

[DllImport("driverinventory", CallingConvention = CallingConvention.Cdecl)]
public static extern int driverinventory_free(IntPtr text);

[DllImport("driverinventory", CallingConvention = CallingConvention.Cdecl)]
public static extern IntPtr driverinventory_error();
'@

$native = [Orvane.DriverInventoryNative]

function ConvertFrom-Utf8([IntPtr] $Text, [int] $Length) {
    $bytes = New-Object byte[] $Length
    [Runtime.InteropServices.Marshal]::Copy($Text, $bytes, 0, $Length)
    [Text.Encoding]::UTF8.GetString($bytes)
}

function Assert-Status([int] $Status) {
    if ($Status -eq 0) { return }
    $sentence = $native::driverinventory_error()
    $length = 0
    while ([Runtime.InteropServices.Marshal]::ReadByte($sentence, $length) -ne 0) { ++$length }
    throw (ConvertFrom-Utf8 $sentence $length)
}

<#
.SYNOPSIS
Collects the inventory of this machine as a JSON document.
.PARAMETER Library
Path of driverinventory.dll, unless it is beside the module.
#>
function Get-DriverInventoryJson([string] $Library = (Join-Path $PSScriptRoot 'driverinventory.dll')) {
    # What is loaded by its path is what the declarations find by its name.
    if ($native::LoadLibraryW($Library) -eq [IntPtr]::Zero) { throw "$Library cannot be loaded." }
    $inventory = [IntPtr]::Zero
    Assert-Status $native::driverinventory_collect([IntPtr]::Zero, [ref] $inventory)
    try {
        $text = [IntPtr]::Zero
        $length = [UIntPtr]::Zero
        Assert-Status $native::driverinventory_document($inventory, 1, [ref] $text, [ref] $length)
        try { ConvertFrom-Utf8 $text ([int] $length.ToUInt32()) }
        finally { [void] $native::driverinventory_free($text) }
    }
    finally { [void] $native::driverinventory_release($inventory) }
}

<#
.SYNOPSIS
Collects the inventory of this machine: an object for each service, device, package and chipset package.
.PARAMETER Library
Path of driverinventory.dll, unless it is beside the module.
#>
function Get-DriverInventory([string] $Library = (Join-Path $PSScriptRoot 'driverinventory.dll')) {
    (Get-DriverInventoryJson $Library | ConvertFrom-Json).drivers
}

Export-ModuleMember -Function Get-DriverInventory, Get-DriverInventoryJson
